/* rlk-modemd as a process: one daemon per state directory, clean exit,
 * crash-safe state, damaged state files refused, many clients at once,
 * shared properties, and the on-demand start by a client at the default
 * socket. */
#include <dirent.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <thread>

#include <gtest/gtest.h>

#include "cutils/properties.h"
#include "qmi_client.h"
#include "ext_request.h"
#include "sim_fixture.h"
#include "tolvek_extend_service_v01.h"

namespace {

std::string repeat_hex(uint8_t byte, size_t n)
{
    static const char d[] = "0123456789abcdef";
    std::string s;
    s.reserve(n * 2);
    for (size_t i = 0; i < n; i++) {
        s += d[byte >> 4];
        s += d[byte & 15];
    }
    return s;
}

TEST(Modemd, SecondDaemonOnTheSameStateIsRefused)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    run_result r = run_process({RLK_MODEMD_BINARY, "--socket", sim.dir() + "/other.sock", "--state", sim.state_dir()},
                               {}, "", 5000);
    EXPECT_TRUE(WIFEXITED(r.status) && WEXITSTATUS(r.status) == 1) << r.status;
    EXPECT_EQ(r.err, "rlk-modemd: state directory " + sim.state_dir() + " is in use by another rlk-modemd (pid " +
                         std::to_string(sim.pid()) + ")\n");
    EXPECT_EQ(sim.ctl("ping"), "ok") << "the first daemon keeps serving";
}

TEST(Modemd, TerminatesCleanlyOnSigterm)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    int status = sim.stop();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_NE(access(sim.socket_path().c_str(), F_OK), 0) << "socket removed";
    ASSERT_TRUE(sim.restart()) << "the lock was released";
}

/* Files written while the daemon is killed are either wholly old or
 * wholly new, never torn, and no temporary file is visible. */
TEST(Modemd, StateSurvivesSigkillDuringWrites)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    constexpr int k_files = 6;
    constexpr size_t k_size = 16384;
    for (int f = 0; f < k_files; f++) sim.ctl_ok("efs put /burst/f" + std::to_string(f) + " " + repeat_hex(0, k_size));
    for (int round = 1; round <= 4; round++) {
        std::atomic<bool> stop{false};
        std::thread writer([&] {
            for (int v = 1; !stop; v++) {
                for (int f = 0; f < k_files && !stop; f++) {
                    sim.ctl("efs put /burst/f" + std::to_string(f) + " " + repeat_hex(uint8_t(v), k_size));
                }
            }
        });
        usleep(20000 + 7000 * round);
        sim.kill_hard();
        stop = true;
        writer.join();
        ASSERT_TRUE(sim.restart());
        for (int f = 0; f < k_files; f++) {
            std::string hex = sim.ctl_ok("efs get /burst/f" + std::to_string(f));
            ASSERT_EQ(hex.size(), 2 * k_size) << "file " << f << " round " << round;
            ASSERT_EQ(hex, repeat_hex(uint8_t(strtoul(hex.substr(0, 2).c_str(), nullptr, 16)), k_size))
                << "file " << f << " torn in round " << round;
        }
        EXPECT_EQ(sim.ctl_ok("efs ls").find("/."), std::string::npos) << "temporary files are never listed";
    }
}

std::string file_text(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/* A state file cut short or damaged is refused whole, with a line in the
 * log naming it, and the seed is used: never a half-read state. */
TEST(Modemd, DamagedStateFilesAreRefusedForTheSeed)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    sim.ctl_ok("uim profile-add 89445000000000000033 0 third");
    sim.ctl_ok("pdc add sw extra_cfg");
    const std::string uim = sim.state_dir() + "/uim_state", pdc = sim.state_dir() + "/pdc/configs";
    const std::string uim_good = file_text(uim), pdc_good = file_text(pdc);
    ASSERT_NE(uim_good.find("third"), std::string::npos);
    ASSERT_NE(pdc_good.find("capacity"), std::string::npos);
    struct {
        const std::string &path;
        std::string text;
    } cases[] = {
        {uim, ""},
        {uim, uim_good.substr(0, 20)},                     /* cut inside the EID */
        {uim, uim_good.substr(0, uim_good.size() - 3)},    /* cut inside the last profile */
        {uim, uim_good.substr(0, uim_good.find("active"))}, /* cut between lines */
        {uim, "eid 89049032000001000000000000000074\npower 1 x\nactive 0\n"},
        {pdc, pdc_good.substr(0, pdc_good.size() / 2)},
        {pdc, pdc_good.substr(0, pdc_good.find("capacity"))},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.path + ": " + c.text);
        sim.stop();
        unlink(sim.log_path().c_str());
        std::ofstream(c.path, std::ios::binary | std::ios::trunc) << c.text;
        ASSERT_TRUE(sim.restart());
        if (&c.path == &uim) {
            std::string st = sim.ctl_ok("uim state");
            EXPECT_NE(st.find("eid 89049032000001000000000000000074"), std::string::npos) << st;
            EXPECT_NE(st.find("profile 89445000000000000017 enabled operator-test"), std::string::npos) << st;
            EXPECT_EQ(st.find("third"), std::string::npos) << st;
        } else {
            std::string show = sim.ctl_ok("pdc show");
            EXPECT_NE(show.find("config sw ROW_Generic_3GPP"), std::string::npos) << show;
            EXPECT_EQ(show.find("extra_cfg"), std::string::npos) << show;
        }
        EXPECT_NE(file_text(sim.log_path()).find("state file " + c.path + " refused ("), std::string::npos);
        EXPECT_EQ(file_text(c.path + ".bad"), c.text) << "the refused file is kept beside";
    }
}

TEST(Modemd, ServesManyClientsAtOnce)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    std::string expect = sim.ctl_ok(std::string("efs get ") + k_seeded_efs_file);
    qmi_idl_service_object_type svc = tolvek_extend_get_service_object_v01();
    constexpr int k_clients = 24, k_requests = 40;
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < k_clients; t++) {
        threads.emplace_back([&] {
            qmi_client_type client = nullptr;
            qmi_client_os_params os = {};
            if (qmi_client_init_instance(svc, QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, &os, 3000, &client) != 0) {
                return;
            }
            for (int i = 0; i < k_requests; i++) {
                tolvek_extend_msg req = make_efs_read_request(), resp;
                if (qmi_client_send_msg_sync(client, 2, &req, sizeof(req), &resp, sizeof(resp), 3000) == 0 &&
                    resp.data[8] * 2 == expect.size()) {
                    good++;
                }
            }
            qmi_client_release(client);
        });
    }
    for (auto &t : threads) t.join();
    EXPECT_EQ(good.load(), k_clients * k_requests);
}

TEST(Modemd, PropertiesAreSharedAndSafeUnderConcurrentWriters)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    constexpr int k_writers = 8, k_rounds = 25;
    std::vector<std::thread> threads;
    for (int w = 0; w < k_writers; w++) {
        threads.emplace_back([w] {
            for (int r = 0; r < k_rounds; r++) {
                std::string key = "persist.test.writer" + std::to_string(w);
                property_set(key.c_str(), std::to_string(r).c_str());
            }
        });
    }
    for (auto &t : threads) t.join();
    /* Another process sees every last value. */
    for (int w = 0; w < k_writers; w++) {
        run_result r = run_process({PLATFORM_PROBE_BINARY, "getprop", "persist.test.writer" + std::to_string(w)},
                                   sim.env());
        EXPECT_EQ(r.out, "2 24\n");
    }
    /* A value keeps its spaces; an unset key gives the default; 91
     * characters fit and 92 do not. */
    EXPECT_EQ(property_set("persist.test.text", "a b  c"), 0);
    char value[PROPERTY_VALUE_MAX];
    EXPECT_EQ(property_get("persist.test.text", value, nullptr), 6);
    EXPECT_STREQ(value, "a b  c");
    EXPECT_EQ(property_get("persist.test.none", value, "dflt"), 4);
    EXPECT_STREQ(value, "dflt");
    EXPECT_EQ(property_get("persist.test.none", value, nullptr), 0);
    EXPECT_EQ(property_set("persist.test.long", std::string(91, 'x').c_str()), 0);
    EXPECT_LT(property_set("persist.test.long", std::string(92, 'x').c_str()), 0);
    /* Restarting keeps them. */
    ASSERT_TRUE(sim.restart());
    EXPECT_EQ(property_get("persist.test.writer3", value, nullptr), 2);
}

/* With no RLK_MODEMD_SOCKET, the first client starts a simulator at the
 * per-user default, detached from the client's standard streams, and the
 * simulator leaves once idle. */
TEST(Modemd, StartsOnDemandAtTheDefaultSocket)
{
    char templ[] = "/tmp/rlk-test-XXXXXX";
    ASSERT_NE(mkdtemp(templ), nullptr);
    std::string runtime = templ;
    std::vector<std::string> env = {"RLK_MODEMD_SOCKET=", "XDG_RUNTIME_DIR=" + runtime,
                                    std::string("RLK_MODEMD=") + RLK_MODEMD_BINARY, "RLK_MODEMD_IDLE_EXIT=1"};
    long long start = monotonic_ms();
    run_result r = run_process({PLATFORM_PROBE_BINARY}, env, "", 10000);
    long long spent = monotonic_ms() - start;
    EXPECT_EQ(r.out, "0 1\n");
    EXPECT_LT(spent, 2000) << "the probe returned without waiting for the simulator to exit";

    std::ifstream lock(runtime + "/rlk-modemd/state/lock");
    pid_t pid = 0;
    lock >> pid;
    ASSERT_GT(pid, 0);
    char link[256] = {0};
    for (int fd = 0; fd <= 2; fd++) {
        std::string p = "/proc/" + std::to_string(pid) + "/fd/" + std::to_string(fd);
        ssize_t n = readlink(p.c_str(), link, sizeof(link) - 1);
        ASSERT_GT(n, 0);
        link[n] = 0;
        EXPECT_STREQ(link, "/dev/null") << "fd " << fd;
    }
    struct stat st;
    EXPECT_EQ(stat((runtime + "/rlk-modemd/state/modemd.log").c_str(), &st), 0) << "logs to its state directory";

    /* Idle for a second: it exits on its own. */
    long long deadline = monotonic_ms() + 5000;
    while (kill(pid, 0) == 0 && monotonic_ms() < deadline) usleep(20000);
    EXPECT_NE(kill(pid, 0), 0) << "simulator still running after its idle time";
    std::string cmd = "rm -rf '" + runtime + "'";
    EXPECT_EQ(system(cmd.c_str()), 0);
}

}  // namespace
