/* Every transcript (*.t) under tests/e2e as one test: a fresh simulator,
 * the runs the file lists and the exact output each must print. */
#include <gtest/gtest.h>

#include <string>

#include "golden.h"
#include "transcript.h"

namespace {

class Transcript : public testing::TestWithParam<std::string> {};

TEST_P(Transcript, PrintsWhatItSays)
{
    run_transcript(GetParam());
}

std::string e2e_dir()
{
    std::string dir = golden_path(__FILE__, ""); /* found from any working folder */
    return dir.substr(0, dir.size() - 1);
}

/* The test is named after the file: "cmn/sar" for tests/e2e/cmn/sar.t. */
std::string name_of(const testing::TestParamInfo<std::string> &info)
{
    std::string name = info.param.substr(e2e_dir().size() + 1);
    name = name.substr(0, name.size() - 2);
    for (char &c : name) {
        if (!isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(E2E, Transcript, testing::ValuesIn(find_transcripts(e2e_dir())), name_of);

}  // namespace
