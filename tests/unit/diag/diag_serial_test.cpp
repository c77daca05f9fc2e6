/* The host diag library over a serial diag port (RLK_DIAG_DEVICE): a
 * pseudo-terminal whose other side the test plays as a modem, answering in
 * pieces, among log packets and event reports, after bad frames; the lock;
 * DCI over the same frames; a port that goes away. */
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "diag_test_util.h"

namespace {

using namespace diag_test;

class DiagSerialTest : public testing::Test {
protected:
    void SetUp() override
    {
        g_answers.take(0, 0);
        master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        ASSERT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
        path = ptsname(master);
        setenv("RLK_DIAG_DEVICE", path.c_str(), 1);
    }
    void TearDown() override
    {
        Diag_LSM_DeInit();
        unsetenv("RLK_DIAG_DEVICE");
        if (master >= 0) close(master);
    }
    /* The next command the library wrote, decoded. */
    bytes command()
    {
        hdlc_decoder dec;
        std::vector<hdlc_frame> frames;
        uint8_t buf[4096];
        for (int i = 0; i < 100 && frames.empty(); i++) {
            struct pollfd p = {master, POLLIN, 0};
            ssize_t n = poll(&p, 1, 20) > 0 ? read(master, buf, sizeof(buf)) : 0;
            if (n > 0) dec.feed(buf, size_t(n), &frames);
        }
        return frames.empty() ? bytes() : frames[0].payload;
    }
    int master = -1;
    std::string path;
};

/* The rows of serial_answers.data: the answer (however late the reader
 * runs), and no second one. */
TEST_F(DiagSerialTest, TheAnswerIsFoundAmongWhatThePortSends)
{
    for (const std::vector<std::string> &row : data_rows(__FILE__, "serial_answers.data", '|')) {
        SCOPED_TRACE(row[0] + " | " + row[1]);
        ASSERT_TRUE(Diag_LSM_Init(nullptr));
        diag_register_callback(on_answer, nullptr);
        diag_switch_logging(CALLBACK_MODE, nullptr);
        bytes cmd = parse_bytes(row[0]);
        ASSERT_EQ(diag_callback_send_data(MSM, cmd.data(), int(cmd.size())), 0);
        EXPECT_EQ(command(), cmd);
        for (const std::string &chunk : fields(row[1], ';')) {
            bytes wire = parse_bytes(chunk);
            ASSERT_EQ(write(master, wire.data(), wire.size()), ssize_t(wire.size()));
            usleep(20000); /* each chunk its own read */
        }
        std::vector<bytes> got = g_answers.take(1, 2000);
        for (const bytes &more : g_answers.take(1, 50)) got.push_back(more);
        EXPECT_EQ(got, std::vector<bytes>{parse_bytes(row[2])});
        /* Only the local processor is there. */
        uint16 mask = 0xFFFF;
        EXPECT_EQ(diag_has_remote_device(&mask), 1);
        EXPECT_EQ(mask, 0);
        EXPECT_TRUE(Diag_LSM_DeInit()) << "the port is let go for the next session";
    }
}

/* A second user of the port is refused; DCI is served over the same
 * frames, in pieces of 4096; a vanished port ends the link. */
TEST_F(DiagSerialTest, ASecondUserIsRefusedDciIsServedInPiecesOf4096AndAVanishedPortEndsTheLink)
{
    int other = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_TRUE(other >= 0 && flock(other, LOCK_EX | LOCK_NB) == 0) << "the other user holds the port";
    EXPECT_FALSE(Diag_LSM_Init(nullptr));
    close(other);

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
    const bytes big = parse_bytes("4b 5a*4999");
    bytes wire = frame(big);
    ASSERT_EQ(write(master, wire.data(), wire.size()), ssize_t(wire.size()));
    EXPECT_EQ(g_answers.take(2, 2000),
              (std::vector<bytes>{bytes(big.begin(), big.begin() + 4096), bytes(big.begin() + 4096, big.end())}));
    EXPECT_EQ(diag_release_dci_client(&id), DIAG_DCI_NO_ERROR);

    ASSERT_TRUE(Diag_LSM_Init(nullptr));
    diag_switch_logging(CALLBACK_MODE, nullptr);
    close(master); /* unplugged */
    master = -1;
    uint16 mask = 0;
    for (int i = 0; i < 500 && diag_has_remote_device(&mask); i++) usleep(10000);
    EXPECT_EQ(diag_has_remote_device(&mask), 0) << "the session ended with the port";
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), -1);
    EXPECT_FALSE(Diag_LSM_DeInit());
}

}  // namespace
