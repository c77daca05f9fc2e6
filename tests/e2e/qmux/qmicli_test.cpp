/* Debian's qmicli, a QMI tool of its own, drives rlk-modemd's QMUX device
 * as it drives a USB modem: each command gives the simulated modem's
 * answer, and leaves no client id allocated behind it. */
#include <regex>

#include "../../unit/sim/sim_test_util.h"
#include "golden.h"

namespace {

constexpr const char k_qmicli[] = "/usr/bin/qmicli";
/* qmicli names a loaded file by its SHA-1: that of carrier.mbn below. */
constexpr const char k_loaded_id[] = "6d3a11e610b5348991de0c995214b81a9bdaeb9e";

/* Reads, the SAR state set by qmicli (and shown by rlk), slot two powered
 * off and on, and a configuration loaded, listed and activated: the
 * session's whole output (each command's, and the simulator's state where
 * a command changed it) is qmicli_session.golden. */
TEST(QmicliOverQmux, CommandsGiveTheModemsAnswers)
{
    if (access(k_qmicli, X_OK) != 0) GTEST_SKIP() << "qmicli is not installed (apt-get install libqmi-utils)";
    sim_instance sim;
    sim.enable_qmux();
    ASSERT_TRUE(sim.start());
    const std::string mbn = sim.dir() + "/carrier.mbn";
    std::string data(50000, 0); /* several chunks of qmicli's size */
    for (size_t i = 0; i < data.size(); i++) data[i] = char(i * 7 + 3);
    write_file(mbn, data);
    std::string session;
    auto qmicli = [&](const std::string &command) {
        run_result r = run_process({k_qmicli, "-d", sim.qmux_path(), "--device-open-qmi", command}, {}, "", 20000);
        EXPECT_TRUE(exited_cleanly(r.status)) << command << "\n" << r.out << r.err;
        EXPECT_EQ(sim.ctl("qmux clients"), "ok") << command << " left a client id allocated";
        session += "$ qmicli " + command + "\n" + r.out;
    };
    auto state = [&](const std::string &request) { session += "> " + request + "\n" + sim.ctl(request) + "\n"; };
    for (const char *command : {"--dms-get-ids", "--dms-get-revision", "--uim-get-card-status",
                                "--uim-get-slot-status", "--sar-rf-get-state", "--pdc-list-configs=software",
                                "--sar-rf-set-state=9", "--sar-rf-get-state"}) {
        qmicli(command);
    }
    state("sar state");
    session += "$ rlk 5 5\n" + sim.run_rlk({"5", "5"}).out;
    qmicli("--uim-sim-power-off=2");
    state("uim state");
    qmicli("--uim-get-card-status");
    qmicli("--uim-sim-power-on=2");
    state("uim state");
    qmicli("--pdc-load-config=" + mbn);
    qmicli("--pdc-list-configs=software");
    sim.ctl_ok("pdc timing 100 100");
    qmicli(std::string("--pdc-activate-config=software,") + k_loaded_id);
    /* The modem restarts 50 ms after the activation's indication: the
     * list waits until it is back rather than racing the restart. */
    ASSERT_TRUE(poll_until(
        [&] {
            return sim.ctl("counter get pdc.restarts") == "ok 1" &&
                   sim.ctl_ok("services").find("pdc 0x0024 instance 0 up") != std::string::npos;
        },
        5000));
    qmicli("--pdc-list-configs=software");
    for (size_t at; (at = session.find(sim.dir())) != std::string::npos;) session.replace(at, sim.dir().size(), "$DIR");
    /* qmicli's own progress lines of the load are left out. */
    session = std::regex_replace(session, std::regex("(Uploaded|Loading next chunk) [^\\n]*\\n"), "");
    expect_golden(session, __FILE__, "qmicli_session.golden");
}

}  // namespace
