/* Helpers of the extension-service end-to-end tests: the wire bytes of the
 * requests the simulator received, runs of the library driver, and small
 * output checks. */
#ifndef RLK_TEST_EXT_TEST_UTIL_H
#define RLK_TEST_EXT_TEST_UTIL_H

#include <stdio.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "data_file.h"
#include "process_runner.h"
#include "sim_fixture.h"
#include "tolvek_extend_payload.h"

/* The data (TLV 0x10, empty when absent) of the last extension request,
 * decoded from the simulator's journal line "<svc> <msg> <txn> <packet hex>". */
inline std::vector<uint8_t> ext_last_data(const sim_instance &sim)
{
    const std::string line = sim.ctl_ok("last 1 ext");
    const std::vector<uint8_t> pkt = unhex(line.substr(line.rfind(' ') + 1));
    for (size_t pos = 7; pos + 3 <= pkt.size();) { /* after the QMI header */
        size_t len = size_t(pkt[pos + 1]) | size_t(pkt[pos + 2]) << 8;
        if (pkt[pos] == TOLVEK_EXTEND_TLV_DATA) return {pkt.begin() + long(pos + 3), pkt.begin() + long(pos + 3 + len)};
        pos += 3 + len;
    }
    return {};
}

/* One run of the library driver: its output and the fields of its final
 * "PROBE ..." line. */
struct probe_run {
    run_result run;
    int result = 9999;
    size_t len = 0;
    std::string fnv;
};

inline probe_run run_probe(const sim_instance &sim, const std::vector<std::string> &args,
                           int timeout_ms = k_run_process_default_timeout_ms)
{
    std::vector<std::string> argv = {EXT_PROBE_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    probe_run p;
    p.run = run_process(argv, sim.env(), "", timeout_ms);
    size_t at = p.run.out.rfind("PROBE result=");
    char fnv[9] = "";
    if (at != std::string::npos) {
        sscanf(p.run.out.c_str() + at, "PROBE result=%d len=%zu fnv=%8s", &p.result, &p.len, fnv);
    }
    p.fnv = fnv;
    return p;
}

inline bool has_text(const std::string &out, const std::string &text)
{
    return out.find(text) != std::string::npos;
}

/* True when one of the run's system-log lines ends with `text` (the
 * message after the "SUB[...] <function>: " prefix). */
inline bool has_syslog(const rlk_run &run, const std::string &text)
{
    return std::any_of(run.syslog.begin(), run.syslog.end(), [&text](const log_line &l) {
        return l.text.size() >= text.size() && l.text.compare(l.text.size() - text.size(), text.size(), text) == 0;
    });
}

/* The group's error note for `code`. */
inline std::string error_note(int code)
{
    return "\nnote: Error happen! error_code(" + std::to_string(code) + ")\n";
}

/* A private simulator for one test, and rlk runs against it. */
class ext_sim_test : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    /* rlk with the words of `args` ("4 1 0 550"). */
    rlk_run rlk(const std::string &args) { return sim.run_rlk(words_of(args)); }

    sim_instance sim;
};

#endif
