/* The capture reader: log packets out of an HDLC stream, with the
 * multi-SIM wrapper removed and every other frame skipped. */
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "hdlc.h"
#include "mi2log_reader.h"

namespace {

/* A log packet frame payload: command 0x10, lengths, code, timestamp. */
std::vector<uint8_t> log_frame(uint16_t code, const std::vector<uint8_t> &payload)
{
    constexpr size_t HEADER = 16;
    size_t log_len = 12 + payload.size();
    std::vector<uint8_t> f(HEADER + payload.size(), 0);
    f[0] = 0x10;
    f[2] = f[4] = static_cast<uint8_t>(log_len);
    f[3] = f[5] = static_cast<uint8_t>(log_len >> 8);
    f[6] = static_cast<uint8_t>(code);
    f[7] = static_cast<uint8_t>(code >> 8);
    for (size_t i = 0; i < 8; i++) f[8 + i] = static_cast<uint8_t>(i + 1);
    for (size_t i = 0; i < payload.size(); i++) f[HEADER + i] = payload[i];
    return f;
}

TEST(Mi2logReaderTest, ReadsLogPacketsAndSkipsTheRest)
{
    std::vector<uint8_t> stream;
    /* Payload bytes that need escaping (0x7E, 0x7D). */
    hdlc_encode(log_frame(0xB193, {0x01, 0x7E, 0x7D}).data(), log_frame(0xB193, {0x01, 0x7E, 0x7D}).size(), &stream);
    std::vector<uint8_t> inner = log_frame(0xB0C2, {0x03});
    std::vector<uint8_t> wrapped(8 + inner.size(), 0);
    wrapped[0] = 0x98;
    wrapped[1] = 0x01;
    wrapped[4] = 1;
    for (size_t i = 0; i < inner.size(); i++) wrapped[8 + i] = inner[i];
    hdlc_encode(wrapped.data(), wrapped.size(), &stream);
    std::vector<uint8_t> event = {0x60, 0x02, 0x00, 0x46, 0x06};
    hdlc_encode(event.data(), event.size(), &stream);
    std::vector<uint8_t> bad;
    hdlc_encode(log_frame(0xB064, {0x01}).data(), log_frame(0xB064, {0x01}).size(), &bad);
    bad[3] ^= 0x01; /* the CRC no longer matches */
    stream.insert(stream.end(), bad.begin(), bad.end());
    /* A log length longer than the frame. */
    std::vector<uint8_t> short_log = log_frame(0xB062, {0x01});
    short_log[4] = 40;
    hdlc_encode(short_log.data(), short_log.size(), &stream);

    char path[] = "/tmp/mi2log_reader_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(write(fd, stream.data(), stream.size()), static_cast<ssize_t>(stream.size()));
    close(fd);
    std::vector<mi2log_log_packet> logs;
    ASSERT_TRUE(mi2log_read_logs(path, &logs));
    unlink(path);
    ASSERT_EQ(logs.size(), 2u);
    EXPECT_EQ(logs[0].code, 0xB193);
    EXPECT_EQ(logs[0].payload, (std::vector<uint8_t>{0x01, 0x7E, 0x7D}));
    EXPECT_EQ(logs[0].timestamp, 0x0807060504030201ull);
    EXPECT_EQ(logs[1].code, 0xB0C2);
    EXPECT_EQ(logs[1].payload, (std::vector<uint8_t>{0x03}));
    EXPECT_EQ(mi2log_logs_of(logs, 0xB0C2).size(), 1u);
    EXPECT_FALSE(mi2log_read_logs("/nonexistent/capture.mi2log", &logs));
}

}  // namespace
