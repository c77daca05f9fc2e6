/* Debian's qmicli, a QMI tool of its own, drives rlk-modemd's QMUX device
 * as it drives a USB modem: each command gives the simulated modem's
 * answer, and leaves no client id allocated behind it. */
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "process_runner.h"
#include "sim_fixture.h"

namespace {

constexpr const char k_qmicli[] = "/usr/bin/qmicli";

class QmicliOverQmux : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (access(k_qmicli, X_OK) != 0) GTEST_SKIP() << "qmicli is not installed (apt-get install libqmi-utils)";
        sim_.enable_qmux();
        ASSERT_TRUE(sim_.start());
    }

    /* Runs one qmicli command on the device; fails the test unless it
     * exits 0 and released its client id. */
    std::string qmicli(const std::string &command)
    {
        run_result r = run_process({k_qmicli, "-d", sim_.qmux_path(), "--device-open-qmi", command}, {}, "", 20000);
        EXPECT_TRUE(exited_cleanly(r.status)) << command << "\n" << r.out << r.err;
        EXPECT_EQ(sim_.ctl("qmux clients"), "ok") << command << " left a client id allocated";
        return r.out;
    }

    sim_instance sim_;
};

/* Reads, the SAR state set by qmicli (and shown by rlk), and slot two
 * powered off and on. */
TEST_F(QmicliOverQmux, CommandsGiveTheModemsAnswers)
{
    const struct {
        std::string command;
        std::vector<const char *> expected;
        const char *uim_state = nullptr; /* what the simulator's UIM state holds after the step */
    } steps[] = {
        {"--dms-get-ids", {"IMEI: '355343101234560'", "ESN: '0'", "MEID: '0'"}},
        {"--dms-get-revision", {"Revision: 'RLK.MPSS.1.0'"}},
        {"--uim-get-card-status", {"Slot [1]:", "Slot [2]:", "Card state: 'present'", "Application state: 'ready'"}},
        {"--uim-get-slot-status", {"2 physical slots found", "Physical slot 1:", "Slot status: active"}},
        {"--sar-rf-get-state", {"Successfully got SAR RF state: 0"}},
        {"--pdc-list-configs=software",
         {"Total configurations: 5", "Description: ROW generic 3GPP", "Status:      Active", "Size:        118784"}},
        {"--sar-rf-set-state=9", {"RF state set successfully"}},
        {"--sar-rf-get-state", {"SAR RF state: 9"}},
        {"--uim-sim-power-off=2", {"Successfully performed SIM power off"}, "slot2 off"},
        {"--uim-get-card-status", {"Slot [2]:\n\tCard state: 'error: power-down (1)'"}},
        {"--uim-sim-power-on=2", {"Successfully performed SIM power on"}, "slot2 on"},
    };
    for (const auto &s : steps) {
        std::string out = qmicli(s.command);
        for (const char *e : s.expected) EXPECT_NE(out.find(e), std::string::npos) << s.command << ": " << e << "\n"
                                                                                    << out;
        if (s.uim_state) {
            EXPECT_NE(sim_.ctl_ok("uim state").find(s.uim_state), std::string::npos) << s.command;
        }
    }
    EXPECT_EQ(sim_.ctl_ok("sar state"), "9");
    EXPECT_NE(sim_.run_rlk({"5", "5"}).out.find("SAR DSI: 9"), std::string::npos);
}

TEST_F(QmicliOverQmux, LoadedConfigurationIsListedAndActivated)
{
    std::string path = sim_.dir() + "/carrier.mbn";
    {
        std::ofstream f(path, std::ios::binary);
        for (int i = 0; i < 50000; i++) f.put(char(i * 7 + 3)); /* several chunks of qmicli's size */
    }
    EXPECT_NE(qmicli("--pdc-load-config=" + path).find("Finished loading"), std::string::npos);
    std::string out = qmicli("--pdc-list-configs=software");
    EXPECT_NE(out.find("Total configurations: 6"), std::string::npos) << out;
    EXPECT_NE(out.find("Size:        50000"), std::string::npos) << out;
    /* qmicli names a loaded file by its SHA-1, printed as colon-separated hex. */
    std::string id;
    for (size_t i = out.rfind("ID:") + 3; i < out.size() && out[i] != '\n'; i++) {
        if (isxdigit(static_cast<unsigned char>(out[i]))) id += out[i];
    }
    ASSERT_EQ(id.size(), 40u) << out;
    sim_.ctl_ok("pdc timing 100 100");
    out = qmicli("--pdc-activate-config=software," + id);
    EXPECT_NE(out.find("Successfully requested config activation"), std::string::npos) << out;
    /* The modem restarts 50 ms after the activation's indication: the
     * list waits until it is back rather than racing the restart. */
    bool back = false;
    for (long long end = monotonic_ms() + 5000; !back && monotonic_ms() < end; usleep(10000)) {
        back = sim_.ctl_ok("counter get pdc.restarts") == "1" &&
               sim_.ctl_ok("services").find("pdc 0x0024 instance 0 up") != std::string::npos;
    }
    ASSERT_TRUE(back);
    out = qmicli("--pdc-list-configs=software");
    EXPECT_NE(out.find("Size:        50000\n\tStatus:      Active"), std::string::npos) << out;
}

}  // namespace
