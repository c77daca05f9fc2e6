/* Signalling messages of log packets as GSMTAP records: per kind one
 * known-good packet gives the exact GSMTAP header and message bytes;
 * truncated packets, unknown versions and channels give nothing. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gsmtap_pcap.h"
#include "signalling.h"
#include "table_file.h"

namespace {

/* Each packet of signalling_packets.txt as "name: status version", and
 * for a message its kind and whole pcap record: time, lengths, the IPv4
 * header (loopback, checksum) and UDP header (port 4729 both ways), the
 * GSMTAP header and the message bytes. */
TEST(Signalling, EachPacketGivesItsGsmtapMessageOrTheReasonForNone)
{
    const char *const status[SIGNALLING_STATUS_COUNT] = {"ok",        "none",    "version-refused",
                                                         "malformed", "skipped", "no-gsmtap"};
    std::string out;
    for (const words &row : data_rows(__FILE__, "signalling_packets.txt")) {
        std::vector<uint8_t> payload = row_bytes(row, 2);
        signalling_result r = signalling_extract(uint16_t(stoul(row[1], nullptr, 0)), payload.data(), payload.size());
        out += row[0] + ": " + status[r.status] + " " + std::to_string(r.version);
        std::string record;
        if (r.status == SIGNALLING_OK) {
            EXPECT_TRUE(pcap_append_gsmtap(&record, 0x56A3F139, 642000, r.msg)) << row[0];
            out += std::string(" ") + r.kind + " " + hex(std::vector<uint8_t>(record.begin(), record.end()));
        }
        out += "\n";
    }
    expect_golden(out, __FILE__, "signalling.golden");
    /* A message no IPv4 datagram holds is not written. */
    std::vector<uint8_t> big(GSMTAP_MAX_MESSAGE + 1);
    gsmtap_message m;
    m.payload = big.data();
    m.length = big.size();
    std::string rec;
    EXPECT_FALSE(pcap_append_gsmtap(&rec, 0, 0, m));
    EXPECT_TRUE(rec.empty());
}

}  // namespace
