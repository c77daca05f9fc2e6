/* GSMTAP messages in a pcap stream, blind to diag.
 *
 * Each message becomes one pcap record of link type LINKTYPE_IPV4 (228): an
 * IPv4 header (127.0.0.1 to 127.0.0.1, protocol UDP), a UDP header (port
 * 4729 to 4729, no checksum), the 16-byte GSMTAP version 2 header and the
 * message.  Wireshark hands UDP port 4729 to its GSMTAP dissector, which
 * hands the message to the dissector of its type and sub-type.
 *
 * GSMTAP header (big-endian):
 *   off 0  u8  version (2)
 *   off 1  u8  header length in 32-bit words (4)
 *   off 2  u8  payload type (GSMTAP_TYPE_*)
 *   off 3  u8  timeslot
 *   off 4  u16 ARFCN; bit 14 uplink, bit 15 PCS band
 *   off 6  s8  signal level (dBm)
 *   off 7  s8  signal/noise ratio (dB)
 *   off 8  u32 frame number
 *   off 12 u8  sub-type (channel or message type)
 *   off 13 u8  antenna number
 *   off 14 u8  sub-slot
 *   off 15 u8  reserved
 *
 * pcap file header: magic 0xA1B2C3D4, version 2.4, zone 0, accuracy 0,
 * snap length 65535, link type; each record: u32 seconds, u32 microseconds,
 * u32 captured length, u32 original length (all little-endian, as the magic
 * shows), then the bytes. */
#ifndef RLK_REPLAY_GSMTAP_PCAP_H
#define RLK_REPLAY_GSMTAP_PCAP_H

#include <stddef.h>
#include <stdint.h>

#include <string>

constexpr uint8_t GSMTAP_VERSION = 2;
constexpr size_t GSMTAP_HEADER_LEN = 16;
constexpr uint16_t GSMTAP_UDP_PORT = 4729;
constexpr uint16_t GSMTAP_ARFCN_UPLINK = 0x4000;
constexpr uint16_t GSMTAP_ARFCN_MASK = 0x3FFF;

/* Payload types. */
constexpr uint8_t GSMTAP_TYPE_UM = 0x01;
constexpr uint8_t GSMTAP_TYPE_ABIS = 0x02;
constexpr uint8_t GSMTAP_TYPE_UMTS_RRC = 0x0C;
constexpr uint8_t GSMTAP_TYPE_LTE_RRC = 0x0D;
constexpr uint8_t GSMTAP_TYPE_LTE_NAS = 0x12;

constexpr uint32_t PCAP_MAGIC = 0xA1B2C3D4;
constexpr uint16_t PCAP_VERSION_MAJOR = 2;
constexpr uint16_t PCAP_VERSION_MINOR = 4;
constexpr uint32_t PCAP_SNAPLEN = 65535;
constexpr uint32_t PCAP_LINKTYPE_IPV4 = 228;
constexpr size_t PCAP_FILE_HEADER_LEN = 24;
constexpr size_t PCAP_RECORD_HEADER_LEN = 16;
constexpr size_t IPV4_HEADER_LEN = 20;
constexpr size_t UDP_HEADER_LEN = 8;
/* Bytes in front of a message in its record. */
constexpr size_t GSMTAP_PACKET_OVERHEAD = IPV4_HEADER_LEN + UDP_HEADER_LEN + GSMTAP_HEADER_LEN;
/* The longest message an IPv4 datagram holds. */
constexpr size_t GSMTAP_MAX_MESSAGE = 65535 - GSMTAP_PACKET_OVERHEAD;

/* One message and the GSMTAP fields that describe it. */
struct gsmtap_message {
    uint8_t type = 0;
    uint8_t sub_type = 0;
    uint16_t arfcn = 0;        /* 14 bits; the uplink flag is added from `uplink` */
    bool uplink = false;
    uint32_t frame_number = 0;
    const uint8_t *payload = nullptr;
    size_t length = 0;
};

/* Appends the 16-byte GSMTAP header of `msg`. */
void gsmtap_append_header(std::string *out, const gsmtap_message &msg);

/* Appends the pcap file header. */
void pcap_append_file_header(std::string *out);

/* Appends one record: record header, IPv4, UDP, GSMTAP header, message.
 * False (nothing appended) when the message is longer than
 * GSMTAP_MAX_MESSAGE. */
bool pcap_append_gsmtap(std::string *out, uint32_t seconds, uint32_t microseconds, const gsmtap_message &msg);

#endif
