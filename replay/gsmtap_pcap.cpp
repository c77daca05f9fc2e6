#include "gsmtap_pcap.h"

namespace {

constexpr uint8_t IPV4_VERSION_IHL = 0x45; /* version 4, 5 words */
constexpr uint8_t IPV4_TTL = 64;
constexpr uint8_t IPV4_PROTO_UDP = 17;
constexpr uint8_t LOOPBACK[4] = {127, 0, 0, 1};

void put_be16(std::string *out, uint16_t v)
{
    out->push_back(static_cast<char>(v >> 8));
    out->push_back(static_cast<char>(v & 0xFF));
}

void put_be32(std::string *out, uint32_t v)
{
    put_be16(out, static_cast<uint16_t>(v >> 16));
    put_be16(out, static_cast<uint16_t>(v & 0xFFFF));
}

void put_le16(std::string *out, uint16_t v)
{
    out->push_back(static_cast<char>(v & 0xFF));
    out->push_back(static_cast<char>(v >> 8));
}

void put_le32(std::string *out, uint32_t v)
{
    put_le16(out, static_cast<uint16_t>(v & 0xFFFF));
    put_le16(out, static_cast<uint16_t>(v >> 16));
}

/* The one's-complement sum of a 20-byte IPv4 header with a zero checksum
 * field: only the total length varies. */
uint16_t ipv4_checksum(uint16_t total_length)
{
    uint32_t sum = (IPV4_VERSION_IHL << 8) + total_length + ((IPV4_TTL << 8) | IPV4_PROTO_UDP);
    sum += 2 * ((LOOPBACK[0] << 8 | LOOPBACK[1]) + (LOOPBACK[2] << 8 | LOOPBACK[3]));
    while (sum >> 16) sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<uint16_t>(~sum & 0xFFFF);
}

}  // namespace

void gsmtap_append_header(std::string *out, const gsmtap_message &msg)
{
    out->push_back(static_cast<char>(GSMTAP_VERSION));
    out->push_back(static_cast<char>(GSMTAP_HEADER_LEN / 4));
    out->push_back(static_cast<char>(msg.type));
    out->push_back(0); /* timeslot */
    put_be16(out, static_cast<uint16_t>((msg.arfcn & GSMTAP_ARFCN_MASK) | (msg.uplink ? GSMTAP_ARFCN_UPLINK : 0)));
    out->push_back(0); /* signal level */
    out->push_back(0); /* signal/noise ratio */
    put_be32(out, msg.frame_number);
    out->push_back(static_cast<char>(msg.sub_type));
    out->append(3, '\0'); /* antenna, sub-slot, reserved */
}

void pcap_append_file_header(std::string *out)
{
    put_le32(out, PCAP_MAGIC);
    put_le16(out, PCAP_VERSION_MAJOR);
    put_le16(out, PCAP_VERSION_MINOR);
    put_le32(out, 0); /* time zone */
    put_le32(out, 0); /* timestamp accuracy */
    put_le32(out, PCAP_SNAPLEN);
    put_le32(out, PCAP_LINKTYPE_IPV4);
}

bool pcap_append_gsmtap(std::string *out, uint32_t seconds, uint32_t microseconds, const gsmtap_message &msg)
{
    if (msg.length > GSMTAP_MAX_MESSAGE) return false;
    auto total = static_cast<uint16_t>(GSMTAP_PACKET_OVERHEAD + msg.length);
    put_le32(out, seconds);
    put_le32(out, microseconds);
    put_le32(out, total);
    put_le32(out, total);
    /* IPv4: no options, no fragmentation. */
    out->push_back(static_cast<char>(IPV4_VERSION_IHL));
    out->push_back(0); /* type of service */
    put_be16(out, total);
    put_be32(out, 0); /* identification, flags, fragment offset */
    out->push_back(static_cast<char>(IPV4_TTL));
    out->push_back(static_cast<char>(IPV4_PROTO_UDP));
    put_be16(out, ipv4_checksum(total));
    out->append(reinterpret_cast<const char *>(LOOPBACK), sizeof(LOOPBACK));
    out->append(reinterpret_cast<const char *>(LOOPBACK), sizeof(LOOPBACK));
    /* UDP: a zero checksum means none over IPv4. */
    put_be16(out, GSMTAP_UDP_PORT);
    put_be16(out, GSMTAP_UDP_PORT);
    put_be16(out, static_cast<uint16_t>(total - IPV4_HEADER_LEN));
    put_be16(out, 0);
    gsmtap_append_header(out, msg);
    out->append(reinterpret_cast<const char *>(msg.payload), msg.length);
    return true;
}
