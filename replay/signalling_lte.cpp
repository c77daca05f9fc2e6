/* LTE RRC OTA (0xB0C0) and LTE NAS plain OTA (0xB0E2, 0xB0E3, 0xB0EC,
 * 0xB0ED) log packets as GSMTAP messages. */
#include "diag_packet.h"
#include "signalling.h"

namespace {

/* GSMTAP LTE RRC sub-types. */
enum lte_rrc_sub : uint8_t {
    LTE_RRC_DL_CCCH = 0,
    LTE_RRC_DL_DCCH = 1,
    LTE_RRC_UL_CCCH = 2,
    LTE_RRC_UL_DCCH = 3,
    LTE_RRC_BCCH_BCH = 4,
    LTE_RRC_BCCH_DL_SCH = 5,
    LTE_RRC_PCCH = 6,
    LTE_RRC_MCCH = 7,
    LTE_RRC_DL_CCCH_NB = 14,
    LTE_RRC_DL_DCCH_NB = 15,
    LTE_RRC_UL_CCCH_NB = 16,
    LTE_RRC_UL_DCCH_NB = 17,
    LTE_RRC_BCCH_BCH_NB = 18,
    LTE_RRC_BCCH_DL_SCH_NB = 20,
    LTE_RRC_PCCH_NB = 21,
    LTE_RRC_SUB_COUNT = 23,
};

const char *const k_lte_rrc_kinds[LTE_RRC_SUB_COUNT] = {
    "LTE RRC DL-CCCH", "LTE RRC DL-DCCH", "LTE RRC UL-CCCH", "LTE RRC UL-DCCH",
    "LTE RRC BCCH-BCH", "LTE RRC BCCH-DL-SCH", "LTE RRC PCCH", "LTE RRC MCCH",
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    "LTE RRC DL-CCCH-NB", "LTE RRC DL-DCCH-NB", "LTE RRC UL-CCCH-NB", "LTE RRC UL-DCCH-NB",
    "LTE RRC BCCH-BCH-NB", nullptr, "LTE RRC BCCH-DL-SCH-NB", "LTE RRC PCCH-NB", nullptr,
};

/* A diag channel number (PDU number) and its GSMTAP sub-type. */
struct channel_row {
    uint8_t pdu;
    uint8_t sub;
};

/* The channel numbers of each family of versions. */
const channel_row k_map_v2[] = {
    {1, LTE_RRC_BCCH_BCH}, {2, LTE_RRC_BCCH_DL_SCH}, {3, LTE_RRC_MCCH},    {4, LTE_RRC_PCCH},
    {5, LTE_RRC_DL_CCCH},  {6, LTE_RRC_DL_DCCH},     {7, LTE_RRC_UL_CCCH}, {8, LTE_RRC_UL_DCCH},
};
const channel_row k_map_v9[] = {
    {8, LTE_RRC_BCCH_BCH}, {9, LTE_RRC_BCCH_DL_SCH}, {10, LTE_RRC_MCCH},    {11, LTE_RRC_PCCH},
    {12, LTE_RRC_DL_CCCH}, {13, LTE_RRC_DL_DCCH},    {14, LTE_RRC_UL_CCCH}, {15, LTE_RRC_UL_DCCH},
};
const channel_row k_map_v14[] = {
    {1, LTE_RRC_BCCH_BCH}, {2, LTE_RRC_BCCH_DL_SCH}, {4, LTE_RRC_MCCH},    {5, LTE_RRC_PCCH},
    {6, LTE_RRC_DL_CCCH},  {7, LTE_RRC_DL_DCCH},     {8, LTE_RRC_UL_CCCH}, {9, LTE_RRC_UL_DCCH},
};
const channel_row k_map_v19[] = {
    {1, LTE_RRC_BCCH_BCH},     {3, LTE_RRC_BCCH_DL_SCH},     {6, LTE_RRC_MCCH},        {7, LTE_RRC_PCCH},
    {8, LTE_RRC_DL_CCCH},      {9, LTE_RRC_DL_DCCH},         {10, LTE_RRC_UL_CCCH},    {11, LTE_RRC_UL_DCCH},
    {45, LTE_RRC_BCCH_BCH_NB}, {46, LTE_RRC_BCCH_DL_SCH_NB}, {47, LTE_RRC_PCCH_NB},    {48, LTE_RRC_DL_CCCH_NB},
    {49, LTE_RRC_DL_DCCH_NB},  {50, LTE_RRC_UL_CCCH_NB},     {52, LTE_RRC_UL_DCCH_NB},
};
const channel_row k_map_v20[] = {
    {1, LTE_RRC_BCCH_BCH},     {2, LTE_RRC_BCCH_DL_SCH},     {4, LTE_RRC_MCCH},        {5, LTE_RRC_PCCH},
    {6, LTE_RRC_DL_CCCH},      {7, LTE_RRC_DL_DCCH},         {8, LTE_RRC_UL_CCCH},     {9, LTE_RRC_UL_DCCH},
    {54, LTE_RRC_BCCH_BCH_NB}, {55, LTE_RRC_BCCH_DL_SCH_NB}, {56, LTE_RRC_PCCH_NB},    {57, LTE_RRC_DL_CCCH_NB},
    {58, LTE_RRC_DL_DCCH_NB},  {59, LTE_RRC_UL_CCCH_NB},     {61, LTE_RRC_UL_DCCH_NB},
};

/* Offsets of one header layout.  All start with u8 version, u8 RRC release,
 * u8 RRC version; the NR-aware ones add u8 NR release, u8 NR version; then
 * u8 radio bearer, u16 physical cell id, EARFCN (u16, or u32 from version
 * 8), u16 SFN and subframe, u8 PDU number, u32 SIB mask (from version 6),
 * u16 message length, the message. */
struct rrc_layout {
    uint8_t earfcn_at;
    bool earfcn32;
    uint8_t pdu_at;
    uint8_t length_at;
};
constexpr rrc_layout LAYOUT_SHORT = {6, false, 10, 11};   /* versions 2-4 */
constexpr rrc_layout LAYOUT_SIB_MASK = {6, false, 10, 15}; /* versions 6-7 */
constexpr rrc_layout LAYOUT_EARFCN32 = {6, true, 12, 17};  /* versions 8-24 */
constexpr rrc_layout LAYOUT_NR = {8, true, 14, 19};        /* versions 25-29 */

struct rrc_version_row {
    uint8_t version;
    const rrc_layout *layout;
    const channel_row *map;
    size_t map_len;
};

#define MAP(m) m, sizeof(m) / sizeof(m[0])
const rrc_version_row k_rrc_versions[] = {
    {2, &LAYOUT_SHORT, MAP(k_map_v2)},     {3, &LAYOUT_SHORT, MAP(k_map_v2)},
    {4, &LAYOUT_SHORT, MAP(k_map_v2)},     {6, &LAYOUT_SIB_MASK, MAP(k_map_v2)},
    {7, &LAYOUT_SIB_MASK, MAP(k_map_v2)},  {8, &LAYOUT_EARFCN32, MAP(k_map_v2)},
    {9, &LAYOUT_EARFCN32, MAP(k_map_v9)},  {12, &LAYOUT_EARFCN32, MAP(k_map_v9)},
    {13, &LAYOUT_EARFCN32, MAP(k_map_v2)}, {14, &LAYOUT_EARFCN32, MAP(k_map_v14)},
    {15, &LAYOUT_EARFCN32, MAP(k_map_v14)}, {16, &LAYOUT_EARFCN32, MAP(k_map_v14)},
    {19, &LAYOUT_EARFCN32, MAP(k_map_v19)}, {20, &LAYOUT_EARFCN32, MAP(k_map_v20)},
    {22, &LAYOUT_EARFCN32, MAP(k_map_v2)}, {24, &LAYOUT_EARFCN32, MAP(k_map_v20)},
    {25, &LAYOUT_NR, MAP(k_map_v20)},      {26, &LAYOUT_NR, MAP(k_map_v19)},
    {27, &LAYOUT_NR, MAP(k_map_v19)},      {29, &LAYOUT_NR, MAP(k_map_v19)},
};
#undef MAP

const rrc_version_row *find_version(uint8_t version)
{
    for (const rrc_version_row &row : k_rrc_versions) {
        if (row.version == version) return &row;
    }
    return nullptr;
}

bool rrc_uplink(uint8_t sub)
{
    return sub == LTE_RRC_UL_CCCH || sub == LTE_RRC_UL_DCCH || sub == LTE_RRC_UL_CCCH_NB ||
           sub == LTE_RRC_UL_DCCH_NB;
}

/* NAS: u8 version (1), u8 release, u8 minor and major version, the message. */
constexpr uint8_t NAS_VERSION = 1;
constexpr size_t NAS_HEADER_LEN = 4;
constexpr uint8_t GSMTAP_LTE_NAS_PLAIN = 0;

}  // namespace

signalling_result signalling_lte_rrc(const uint8_t *payload, size_t len)
{
    signalling_result r;
    if (len == 0) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    r.version = payload[0];
    const rrc_version_row *row = find_version(payload[0]);
    if (!row) {
        r.status = SIGNALLING_VERSION_REFUSED;
        return r;
    }
    const rrc_layout &l = *row->layout;
    size_t header = l.length_at + 2u;
    if (len < header || diag_le16(payload + l.length_at) != len - header) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    uint8_t pdu = payload[l.pdu_at];
    const channel_row *ch = nullptr;
    for (size_t i = 0; i < row->map_len; i++) {
        if (row->map[i].pdu == pdu) ch = &row->map[i];
    }
    if (!ch) {
        r.status = SIGNALLING_CHANNEL_SKIPPED;
        return r;
    }
    uint32_t earfcn = l.earfcn32 ? diag_le32(payload + l.earfcn_at) : diag_le16(payload + l.earfcn_at);
    r.status = SIGNALLING_OK;
    r.kind = k_lte_rrc_kinds[ch->sub];
    r.msg.type = GSMTAP_TYPE_LTE_RRC;
    r.msg.sub_type = ch->sub;
    /* An EARFCN beyond the 14 bits of the field is left out. */
    r.msg.arfcn = earfcn <= GSMTAP_ARFCN_MASK ? static_cast<uint16_t>(earfcn) : 0;
    r.msg.uplink = rrc_uplink(ch->sub);
    r.msg.payload = payload + header;
    r.msg.length = len - header;
    return r;
}

signalling_result signalling_lte_nas(uint16_t code, const uint8_t *payload, size_t len)
{
    signalling_result r;
    if (len == 0) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    r.version = payload[0];
    if (payload[0] != NAS_VERSION) {
        r.status = SIGNALLING_VERSION_REFUSED;
        return r;
    }
    if (len <= NAS_HEADER_LEN) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    bool esm = code == LOG_LTE_NAS_ESM_IN || code == LOG_LTE_NAS_ESM_OUT;
    bool uplink = code == LOG_LTE_NAS_ESM_OUT || code == LOG_LTE_NAS_EMM_OUT;
    r.status = SIGNALLING_OK;
    r.kind = esm ? (uplink ? "LTE NAS ESM uplink" : "LTE NAS ESM downlink")
                 : (uplink ? "LTE NAS EMM uplink" : "LTE NAS EMM downlink");
    r.msg.type = GSMTAP_TYPE_LTE_NAS;
    r.msg.sub_type = GSMTAP_LTE_NAS_PLAIN;
    r.msg.uplink = uplink;
    r.msg.payload = payload + NAS_HEADER_LEN;
    r.msg.length = len - NAS_HEADER_LEN;
    return r;
}
