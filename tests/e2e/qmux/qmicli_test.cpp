/* Debian's qmicli, a QMI tool of its own, drives rlk-modemd's QMUX device
 * as it drives a USB modem: each command gives the simulated modem's
 * answer, and leaves no client id allocated behind it. */
#include <sstream>

#include "../../unit/sim/sim_test_util.h"
#include "golden.h"

namespace {

constexpr const char k_qmicli[] = "/usr/bin/qmicli";

/* Reads, the SAR state set by qmicli (and shown by rlk), slot two powered
 * off and on, and a configuration loaded, listed and activated: the
 * session qmicli_session.golden holds the commands ("$ qmicli ...",
 * "$ rlk 5 5", and "> request" for the simulator's state where a command
 * changed it), each followed by its whole output. */
TEST(QmicliOverQmux, CommandsGiveTheModemsAnswers)
{
    if (access(k_qmicli, X_OK) != 0) GTEST_SKIP() << "qmicli is not installed (apt-get install libqmi-utils)";
    sim_instance sim;
    sim.enable_qmux();
    ASSERT_TRUE(sim.start());
    std::string data(50000, 0); /* several chunks of qmicli's size; its SHA-1 names it in the session */
    for (size_t i = 0; i < data.size(); i++) data[i] = char(i * 7 + 3);
    write_file(sim.dir() + "/carrier.mbn", data);
    std::string session;
    for (const std::string &line : data_lines(__FILE__, "qmicli_session.golden")) {
        if (line.compare(0, 2, "> ") == 0) session += line + "\n" + sim.ctl(line.substr(2)) + "\n";
        if (line == "$ rlk 5 5") session += line + "\n" + sim.run_rlk({"5", "5"}).out;
        if (line.compare(0, 9, "$ qmicli ") != 0) continue;
        std::string command = line.substr(9);
        if (command.find("$DIR") != std::string::npos) command.replace(command.find("$DIR"), 4, sim.dir());
        run_result r = run_process({k_qmicli, "-d", sim.qmux_path(), "--device-open-qmi", command}, {}, "", 20000);
        EXPECT_TRUE(exited_cleanly(r.status)) << command << "\n" << r.out << r.err;
        EXPECT_EQ(sim.ctl("qmux clients"), "ok") << command << " left a client id allocated";
        session += line + "\n" + r.out;
        /* The modem restarts 50 ms after the activation's indication: the
         * next command waits until it is back rather than racing the restart. */
        if (command.find("--pdc-activate-config") == std::string::npos) continue;
        ASSERT_TRUE(poll_until(
            [&] {
                return sim.ctl("counter get pdc.restarts") == "ok 1" &&
                       sim.ctl_ok("services").find("pdc 0x0024 instance 0 up") != std::string::npos;
            },
            5000));
    }
    for (size_t at; (at = session.find(sim.dir())) != std::string::npos;) session.replace(at, sim.dir().size(), "$DIR");
    /* qmicli's own progress lines of the load are left out. */
    std::string kept;
    std::istringstream lines(session);
    for (std::string line; std::getline(lines, line);) {
        size_t cut = std::min(line.find("Uploaded "), line.find("Loading next chunk "));
        kept += cut == std::string::npos ? line + "\n" : line.substr(0, cut);
    }
    expect_golden(kept, __FILE__, "qmicli_session.golden");
}

}  // namespace
