/* The host diag library over a serial diag port (RLK_DIAG_DEVICE): a
 * pseudo-terminal whose other side the test plays as a modem, answering in
 * pieces, among log packets and event reports, after bad frames; DCI over
 * the same frames; the lock; a port that goes away. */
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "diag_test_util.h"

namespace {

using diag_test::bytes;
using diag_test::frame;

diag_test::call_box g_answers;

int on_answer(unsigned char *p, int len, void *) { return g_answers.add(p, len, nullptr), 0; }
void on_dci_answer(unsigned char *p, int len, void *) { g_answers.add(p, len, nullptr); }

class DiagSerialTest : public testing::Test {
protected:
    void SetUp() override
    {
        master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        ASSERT_GE(master, 0);
        ASSERT_EQ(grantpt(master), 0);
        ASSERT_EQ(unlockpt(master), 0);
        path = ptsname(master);
        setenv("RLK_DIAG_DEVICE", path.c_str(), 1);
    }
    void TearDown() override
    {
        Diag_LSM_DeInit();
        unsetenv("RLK_DIAG_DEVICE");
        if (master >= 0) close(master);
    }
    void open_callback_session()
    {
        ASSERT_TRUE(Diag_LSM_Init(nullptr));
        diag_register_callback(on_answer, nullptr);
        diag_switch_logging(CALLBACK_MODE, nullptr);
    }
    /* The next command the library wrote, decoded. */
    bytes command()
    {
        std::vector<hdlc_frame> frames;
        uint8_t buf[4096];
        for (int i = 0; i < 100 && frames.empty(); i++) {
            struct pollfd p = {master, POLLIN, 0};
            ssize_t n = poll(&p, 1, 20) > 0 ? read(master, buf, sizeof(buf)) : 0;
            if (n > 0) dec.feed(buf, size_t(n), &frames);
        }
        return frames.empty() ? bytes() : frames[0].payload;
    }
    void modem_writes(const std::vector<bytes> &chunks)
    {
        for (const bytes &c : chunks) {
            ASSERT_EQ(write(master, c.data(), c.size()), ssize_t(c.size()));
            usleep(20000); /* each chunk its own read */
        }
    }
    int master = -1;
    std::string path;
    hdlc_decoder dec;
};

TEST_F(DiagSerialTest, TheAnswerIsFoundAmongWhatThePortSends)
{
    open_callback_session();
    const bytes ver = {0x1C, 0x08, 0x00};
    bytes ver_frame = frame(ver);
    bytes bad_crc = ver_frame;
    bad_crc[1] ^= 0x01;
    bytes both = frame({0x10, 0, 14, 0, 14, 0, 0x93, 0xB1, 1, 2, 3, 4, 5, 6, 7, 8, 0xAA, 0xBB});
    both.insert(both.end(), ver_frame.begin(), ver_frame.end());
    const struct {
        const char *name;
        bytes cmd;
        std::vector<bytes> chunks; /* what the modem writes, one read each */
        bytes want;
    } cases[] = {
        {"split across reads", {0x1C}, {bytes(ver_frame.begin(), ver_frame.begin() + 2),
                                        bytes(ver_frame.begin() + 2, ver_frame.end())}, ver},
        {"a log packet and the answer in one read", {0x1C}, {both}, ver},
        {"a bad frame first", {0x1C}, {bad_crc, ver_frame}, ver},
        {"a stale answer of another command first", {0x1C}, {frame({0x00, 1, 2}), ver_frame}, ver},
        {"an event report before the EVENT_REPORT answer", {0x60, 0},
         {frame({0x60, 5, 0, 0x46, 0x26, 9, 9, 4}), frame({0x60, 0, 0})}, {0x60, 0, 0}},
        {"an error answer", {0x1C, 0x01}, {frame({0x15, 0x1C, 0x01})}, {0x15, 0x1C, 0x01}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        if (&c == &cases[3]) {
            /* A session after another in one process: the port was let go. */
            ASSERT_TRUE(Diag_LSM_DeInit());
            open_callback_session();
        }
        bytes cmd = c.cmd;
        ASSERT_EQ(diag_callback_send_data(MSM, cmd.data(), int(cmd.size())), 0);
        EXPECT_EQ(command(), c.cmd);
        modem_writes(c.chunks);
        /* The answer (however late the reader runs), and no second one. */
        std::vector<bytes> got = g_answers.take(1, 2000);
        for (const bytes &more : g_answers.take(1, 50)) got.push_back(more);
        EXPECT_EQ(got, std::vector<bytes>{c.want});
    }
    /* Only the local processor is there. */
    uint16 mask = 0xFFFF;
    EXPECT_EQ(diag_has_remote_device(&mask), 1);
    EXPECT_EQ(mask, 0);
}

TEST_F(DiagSerialTest, DciIsServedOverTheSameFramesInPiecesOf4096)
{
    int id = 0, sig = 18;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    EXPECT_EQ(diag_register_dci_client(&id, &list, MDM, &sig), DIAG_DCI_NOT_SUPPORTED);
    ASSERT_EQ(diag_register_dci_client(&id, &list, MSM, &sig), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(diag_get_dci_support_list_proc(MSM, &list), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(list, DIAG_CON_MPSS);
    std::vector<unsigned char> rsp(16384);
    unsigned char cmd[] = {0x4B, 0x13, 0x27, 0x00};
    ASSERT_EQ(diag_send_dci_async_req(id, cmd, 4, rsp.data(), int(rsp.size()), on_dci_answer, nullptr),
              DIAG_DCI_NO_ERROR);
    EXPECT_EQ(command(), bytes(cmd, cmd + 4));
    bytes big(5000, 0x5A);
    big[0] = 0x4B;
    modem_writes({frame(big)});
    EXPECT_EQ(g_answers.take(2, 2000),
              (std::vector<bytes>{bytes(big.begin(), big.begin() + 4096), bytes(big.begin() + 4096, big.end())}));
    EXPECT_EQ(diag_release_dci_client(&id), DIAG_DCI_NO_ERROR);
}

TEST_F(DiagSerialTest, ASecondUserOfThePortIsRefusedAndAVanishedPortEndsTheLink)
{
    int other = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(other, 0);
    ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
    EXPECT_FALSE(Diag_LSM_Init(nullptr));
    close(other);

    ASSERT_TRUE(Diag_LSM_Init(nullptr));
    diag_switch_logging(CALLBACK_MODE, nullptr);
    close(master); /* unplugged */
    master = -1;
    uint16 mask = 0;
    for (int i = 0; i < 500 && diag_has_remote_device(&mask); i++) usleep(10000);
    EXPECT_EQ(diag_has_remote_device(&mask), 0) << "the session ended with the port";
    unsigned char cmd[] = {0x1C};
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), -1);
    EXPECT_FALSE(Diag_LSM_DeInit());
}

}  // namespace
