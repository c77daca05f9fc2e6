/* Scenarios whose checks need the simulator's multi-line answers (requests
 * as they reached the modem, the card's state, the EFS listing): each
 * *.steps file of these folders runs against a fresh simulator, and what
 * its runs and control requests printed must equal the <name>.golden next
 * to it.  "$ rlk ..." and "$ ext_probe ..." run a program (its output,
 * rlk's system log and a non-zero status go into the journal), "> request"
 * asks the simulator (the answer goes into it), "! restart" restarts it on
 * the same state, "! wait-up N" waits until the modem is back from its
 * N-th restart with every service up, and "! file F" adds the simulator's
 * state file F; other lines are comments. */
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "golden.h"
#include "sim_fixture.h"

namespace {

/* A run's output as compared: source line numbers ("RIL[fn:123]",
 * "[file.cpp:123]"), addresses and times are replaced, and the lines of the QMI
 * indication and error callbacks, which run on their own thread and so land
 * anywhere, are left out. */
std::string stable_text(const std::string &text)
{
    static const std::regex line_no(":[0-9]+\\]"), address("0x[0-9a-f]{9,}");
    static const std::regex time("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}Z");
    static const std::regex callback("[^\n]*(_unsol_ind_cb|[[ ]error_cb):[^\n]*\n");
    std::string s = std::regex_replace(text, callback, "");
    s = std::regex_replace(std::regex_replace(s, line_no, ":N]"), address, "0xADDR");
    return std::regex_replace(s, time, "TIME");
}

std::string journal_of(const std::string &path)
{
    sim_instance sim;
    if (!sim.start()) return "no simulator\n";
    std::ifstream in(path);
    std::string journal;
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("> ", 0) == 0) {
            journal += line + "\n" + sim.ctl(line.substr(2)) + "\n";
            continue;
        }
        if (line == "! restart") journal += sim.restart() ? "! restart\n" : "! restart failed\n";
        if (line.rfind("! wait-up ", 0) == 0) {
            const long long ups = atoll(line.c_str() + 10);
            bool up = poll_until([&] {
                return atoll(sim.ctl_ok("counter get ext.restart.up").c_str()) >= ups &&
                       sim.ctl_ok("services").find("down") == std::string::npos;
            }, 3000);
            journal += line + (up ? "\n" : " timed out\n");
        }
        if (line.rfind("! file ", 0) == 0) {
            std::ifstream f(sim.state_dir() + "/" + line.substr(7));
            journal += line + "\n" + stable_text(std::string(std::istreambuf_iterator<char>(f), {}));
        }
        if (line.rfind("$ ", 0) != 0) continue;
        std::istringstream words(line.substr(2));
        std::string program;
        words >> program;
        if (program != "rlk" && program != "ext_probe") {
            journal += line + "\nno such program\n";
            continue;
        }
        std::vector<std::string> args;
        for (std::string w; words >> w;) args.push_back(w);
        rlk_run r = sim.run_program(program == "ext_probe" ? EXT_PROBE_BINARY : RLK_BINARY, args);
        std::string printed = r.out + (r.out.empty() || r.out.back() == '\n' ? "" : "(no newline at end)\n");
        for (const log_line &l : program == "rlk" ? r.syslog : std::vector<log_line>()) {
            printed += "log " + std::to_string(l.priority) + "| " + l.text + (l.text.empty() || l.text.back() != '\n' ? "\n" : "");
        }
        journal += line + "\n" + stable_text(printed);
        if (r.status != 0) journal += "? wait status " + std::to_string(r.status) + "\n";
    }
    return journal;
}

std::vector<std::string> step_files()
{
    std::string here = golden_path(__FILE__, ""); /* found from any working folder */
    std::vector<std::string> found;
    for (const auto &e : std::filesystem::recursive_directory_iterator(here.substr(0, here.rfind("/extension")))) {
        if (e.path().extension() == ".steps") found.push_back(e.path().string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

class StepJournal : public testing::TestWithParam<std::string> {};

TEST_P(StepJournal, PrintsItsGolden)
{
    const std::string path = GetParam(), stem = std::filesystem::path(path).stem().string();
    expect_golden(journal_of(path), path.c_str(), stem + ".golden");
}

INSTANTIATE_TEST_SUITE_P(E2E, StepJournal, testing::ValuesIn(step_files()),
                         [](const testing::TestParamInfo<std::string> &info) {
                             return std::filesystem::path(info.param).stem().string();
                         });

}  // namespace
