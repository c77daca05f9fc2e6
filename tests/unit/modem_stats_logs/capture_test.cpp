/* Real captures: the packets of the public sample captures whose codes and
 * versions the parsers accept decode to the physical values the public
 * decoders list for them.  The captures are read from ../shared/captures;
 * without that folder the tests skip. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "capture_files.h"
#include "golden.h"
#include "log_test_util.h"

using namespace log_test;

namespace {

class CaptureTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (capture_files_dir().empty())
            GTEST_SKIP() << "captures folder " RLK_CAPTURES_DIR " is absent: real-capture checks skipped";
    }
    /* The packets of `code` in a capture file, of which there are `count`. */
    static std::vector<capture_log_packet> logs_of(const std::string &file, uint16_t code, size_t count)
    {
        std::vector<capture_log_packet> all;
        EXPECT_TRUE(capture_read_logs(capture_files_dir() + "/" + file, &all)) << file;
        std::vector<capture_log_packet> logs = capture_logs_of(all, code);
        EXPECT_EQ(logs.size(), count) << file;
        return logs;
    }
};

/* capture.golden holds what these packets print and record.  RSRP =
 * raw/16 - 180 dBm, RSRQ = raw/16 - 30 dB, RSSI = raw/16 - 110 dBm, SNR =
 * raw/10 - 20 dB.
 * - att 0xB193 [0], [1]: sub-packet version 19, one cell: the primary cell
 *   (RSRP -112.94, SNR 4.90), then the secondary cell of the carrier at
 *   EARFCN 700 (RSRP -107.00, SNR 9.10).
 * - offline 0xB193 [0]: sub-packet version 18 (offsets at odd bytes, 11-bit
 *   RSRP).  8.9 dB prints as 8.99: the required digit-by-digit rounding
 *   takes the tenths from the single-precision 8.9f * 10 (89.0) and the
 *   hundredths from 8.9f * 100 (889.99994).
 * - att 0xB0C2 [0]: version 3, PCI 185, EARFCN 5780/23780, 50 RBs, band 17,
 *   PLMN 310-410.
 * - att 0xB064 [0]: five samples of 26-byte grants, padding 21 and 19
 *   bytes, a long BSR with empty buffers in each, a power headroom of level
 *   18 in two of them.
 * - offline 0xB064 [2]: sample 3 holds a 142-byte SDU (15-bit length).
 * - offline 0xB062 [0]: the one RACH attempt is sub-packet version 2,
 *   which is refused. */
TEST_F(CaptureTest, PacketsDecodeToThePublicValues)
{
    /* Per code of a file: its packets, those shown in the golden file, and
     * whether every one of them must make one record without a fault
     * message. */
    const struct {
        const char *file;
        uint16_t code;
        size_t count;
        std::vector<size_t> shown;
        bool every;
    } sets[] = {{"att.mi2log", 0xB193, 1091, {0, 1}, true},
                {"offline_log_example.mi2log", 0xB193, 46, {0}, false},
                {"att.mi2log", 0xB0C2, 2, {0}, false},
                {"att.mi2log", 0xB064, 86, {0}, true},
                {"offline_log_example.mi2log", 0xB064, 3, {2}, true},
                {"offline_log_example.mi2log", 0xB062, 1, {0}, false}};
    std::string text;
    for (const auto &set : sets) {
        std::vector<capture_log_packet> logs = logs_of(set.file, set.code, set.count);
        for (size_t i : set.shown) {
            ASSERT_GT(logs.size(), i);
            text += fmt("== %s 0x%x [%zu]\n", set.file, set.code, i) + describe(run_log(set.code, logs[i].payload));
        }
        for (size_t i = 0; set.every && i < logs.size(); i++) {
            run_result r = run_log(set.code, logs[i].payload);
            ASSERT_EQ(r.records.size(), 1u) << set.file << " packet " << i << "\n" << r.out;
            EXPECT_TRUE(set.code == 0xB064 || r.records[0].id == MODEM_STATS_DATA_ID_LTE_SRV_MEAS ||
                        r.records[0].id == MODEM_STATS_DATA_ID_LTE_SRV_MEAS_ALT);
            for (const char *fault : {"not enough", "error", "not support"})
                EXPECT_EQ(r.out.find(fault), std::string::npos) << set.file << " packet " << i << "\n" << r.out;
        }
    }
    expect_golden(text, __FILE__, "capture.golden");
}

}  // namespace
