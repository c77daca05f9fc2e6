#include "log_test_util.h"

#include <stdarg.h>
#include <stdio.h>

#include <algorithm>
#include <map>

#include "modem_stats_dispatch.h"
#include "modem_stats_unpack.h"

namespace log_test {

run_result run_log(uint16_t code, const std::vector<uint8_t> &bytes, int32_t cut)
{
    run_result result;
    const modem_stats_parser_row *row = modem_stats_parser_find(modem_stats_log_parser_table(), code);
    EXPECT_NE(row, nullptr) << "no parser for 0x" << std::hex << code;
    if (!row) return result;
    std::vector<uint8_t> payload = stats_test::payload(bytes);
    stats_test::record_log released;
    result.out = stats_test::captured_stdout([&] {
        if (!modem_stats_data_unpk_start(code, payload.data())) return;
        if (cut != NO_CUT) g_pk_data_left = cut;
        modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
        modem_stats_single_data_common_type *made = nullptr;
        switch (row->kind) {
            case MODEM_STATS_PARSER_PLAIN: row->parse(&id, &made); break;
            case MODEM_STATS_PARSER_SUB: row->parse_sub(MODEM_STATS_SUB_ID_0, &id, &made); break;
            case MODEM_STATS_PARSER_SUB_ONLY: row->parse_sub_only(MODEM_STATS_SUB_ID_0); break;
            default: break;
        }
        if (made && made->data_id != id) ADD_FAILURE() << "record id differs from the reported id";
        /* A parser that keeps its record is only looked at. */
        if (made && !row->release)
            result.records.push_back(stats_test::seen(made));
        else
            modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, id, made);
    });
    std::vector<record> freed = released.take();
    result.records.insert(result.records.end(), freed.begin(), freed.end());
    return result;
}

std::string fmt(const char *format, ...)
{
    char buf[1024];
    va_list ap;
    va_start(ap, format);
    vsnprintf(buf, sizeof(buf), format, ap);
    va_end(ap);
    return buf;
}

std::string parser_name(uint16_t code)
{
    // clang-format off
    static const std::map<uint16_t, const char *> names = {
        {0x1568, "ims_rtp_sn_and_payload"}, {0x156E, "ims_sip_message"},
        {0x1830, "ims_volte_session_setup"}, {0x1831, "ims_volte_session_end"},
        {0x4179, "wcdma_pn_search_edition2"}, {0x5096, "gsm_l1_rx_diversity_metrics"},
        {0xB062, "lte_mac_rach_attempt"}, {0xB064, "lte_mac_ul_transport_block"},
        {0xB0C2, "lte_rrc_serving_cell_info"}, {0xB111, "lte_ll1_rx_agc"},
        {0xB14E, "lte_pusch_csf"}, {0xB16D, "lte_tx_power"},
        {0xB16E, "lte_pusch_power_control"}, {0xB16F, "lte_pucch_power_control"},
        {0xB173, "lte_pdsch_stat_indication"}, {0xB193, "lte_srv_meas"},
        {0xB823, "nr5g_rrc_serving_cell_info"}, {0xB825, "nr5g_rrc_configuration_info"},
        {0xB872, "nr5g_l2_ul_tb"}, {0xB883, "nr5g_mac_ul_physical_channel_schedule_report"},
        {0xB884, "nr5g_mac_ul_phy_ch_power_ctrl"}, {0xB885, "nr5g_mac_dci_info"},
        {0xB887, "nr5g_mac_pdsch_status"}, {0xB888, "nr5g_mac_pdsch_stats"},
        {0xB88A, "nr5g_mac_rach_attempt"}, {0xB8A7, "nr5g_mac_csf_report"},
        {0xB8C9, "nr5g_ll1_fw_rx_control_agc"}, {0xB8D2, "nr5g_ll1_fw_mac_tx_iu_power"},
        {0xB8D8, "nr5g_ll1_log_serving_snr"}, {0xB8DD, "nr5g_ll1_fw_serving_ftl"},
        {0xB975, "nr5g_mac_ml1_srv_beam"}, {0xB97F, "nr5g_ml1_meas_database_update_ext"},
        {0xB981, "nr5g_ml1_fc_information"}, {0xB98F, "nr5g_ml1_antenna_switch_diversity"}};
    // clang-format on
    auto it = names.find(code);
    return it == names.end() ? "" : fmt("modem_stats_parse_%04x_diag_log_%s", code, it->second);
}

std::string not_valid(int value, uint16_t code, const std::string &name)
{
    return fmt("DATA_IS_NOT_VALID(%d), name(%s), id(0x%x)\n", value, (name.empty() ? parser_name(code) : name).c_str(),
               code);
}

void expect_log(uint16_t code, const std::vector<uint8_t> &p, const std::string &out,
                const std::vector<record> &records, const cut &c)
{
    SCOPED_TRACE(fmt("code 0x%x, first bytes %02x %02x %02x %02x", code, p.at(0), p.at(1), p.at(2), p.at(3)));
    run_result full = run_log(code, p);
    EXPECT_EQ(full.out, out);
    EXPECT_EQ(full.records, records);
    if (c.at == NO_CUT) return;
    std::string line = fmt("g_pk_data_left(%d) is not enough for %s, id(0x%x)\n", c.left, c.field, code);
    expect_stop(run_log(code, p, c.at), line, out);
}

void expect_stop(const run_result &r, const std::string &line, const std::string &full)
{
    size_t before = r.out.size() - std::min(r.out.size(), line.size());
    EXPECT_EQ(r.out.substr(before), line) << r.out;
    if (!full.empty()) {
        EXPECT_EQ(r.out.substr(0, before), full.substr(0, before)) << r.out;
    }
    EXPECT_TRUE(r.records.empty());
}

void expect_refused(uint16_t code, const std::vector<uint8_t> &p, int64_t version, std::string name,
                    const std::string &before)
{
    if (name.empty()) name = parser_name(code);
    uint64_t count = g_pk_version_not_support_num + 1;
    run_result r = run_log(code, p);
    EXPECT_EQ(g_pk_version_not_support_num, count);
    EXPECT_EQ(r.out, before + fmt("VERSION_NOT_SUPPORT, version(%d), not_support_num(%lu), name(%s), id(0x%x)\n",
                                  static_cast<int>(version), static_cast<unsigned long>(count), name.c_str(), code));
    EXPECT_TRUE(r.records.empty());
}

}  // namespace log_test
