#include "log_test_util.h"

#include <stdarg.h>
#include <stdio.h>

#include <algorithm>
#include <map>

#include "capture_files.h"
#include "modem_stats_dispatch.h"
#include "modem_stats_unpack.h"
#include "../modem_stats/stats_test_util.h"

namespace log_test {

namespace {

std::vector<made_record> *g_collected = nullptr;

void collect(modem_stats_sub_id_e_type, modem_stats_data_id_e_type id, const modem_stats_single_data_common_type *r)
{
    if (g_collected) g_collected->push_back({id, std::vector<uint8_t>(r->data, r->data + r->data_len)});
}

}  // namespace

run_result run_log(uint16_t code, const std::vector<uint8_t> &bytes, int32_t cut)
{
    run_result result;
    const modem_stats_parser_row *row = modem_stats_parser_find(modem_stats_log_parser_table(), code);
    EXPECT_NE(row, nullptr) << "no parser for 0x" << std::hex << code;
    if (!row) return result;
    std::vector<uint8_t> payload(MODEM_STATS_UNPK_MAX_LEN, 0);
    memcpy(payload.data(), bytes.data(), std::min(bytes.size(), payload.size()));
    g_collected = &result.records;
    modem_stats_set_record_observer(collect);
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
        if (made && !row->release) {
            /* The parser keeps it: only look at it. */
            result.records.push_back({id, std::vector<uint8_t>(made->data, made->data + made->data_len)});
        } else {
            modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, id, made);
        }
    });
    modem_stats_set_record_observer(nullptr);
    g_collected = nullptr;
    return result;
}

void expect_case(const log_case &c)
{
    SCOPED_TRACE(c.name);
    run_result full = run_log(c.code, c.packet);
    EXPECT_EQ(full.out, c.out);
    ASSERT_EQ(full.records.size(), c.records.size());
    for (size_t i = 0; i < c.records.size(); i++) {
        EXPECT_EQ(full.records[i].id, c.records[i].id) << "record " << i;
        EXPECT_EQ(full.records[i].bytes, c.records[i].bytes) << "record " << i;
    }
    if (c.cut_field.empty()) return;
    run_result cut = run_log(c.code, c.packet, c.cut);
    std::string line = not_enough_line(c.cut_left, c.cut_field, c.code);
    ASSERT_GE(cut.out.size(), line.size()) << cut.out;
    EXPECT_EQ(cut.out.substr(cut.out.size() - line.size()), line) << cut.out;
    EXPECT_EQ(cut.out.find("not enough"), cut.out.size() - line.size() + line.find("not enough")) << cut.out;
    EXPECT_TRUE(cut.records.empty());
}

void expect_refused(uint16_t code, const std::vector<uint8_t> &packet, int64_t version, const std::string &name,
                    const std::string &lines_before)
{
    uint64_t before = g_pk_version_not_support_num;
    run_result r = run_log(code, packet);
    EXPECT_EQ(g_pk_version_not_support_num, before + 1);
    EXPECT_EQ(r.out, lines_before + version_line(version, before + 1, name, code));
    EXPECT_TRUE(r.records.empty());
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

std::string version_line(int64_t version, uint64_t count, const std::string &name, uint16_t code)
{
    return fmt("VERSION_NOT_SUPPORT, version(%d), not_support_num(%lu), name(%s), id(0x%x)\n",
               static_cast<int>(version), static_cast<unsigned long>(count), name.c_str(), code);
}

std::string not_enough_line(int32_t left, const std::string &name, uint16_t code)
{
    return fmt("g_pk_data_left(%d) is not enough for %s, id(0x%x)\n", left, name.c_str(), code);
}

std::string parser_name(uint16_t code)
{
    static const std::map<uint16_t, std::string> names = {
        {0x1568, "modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload"},
        {0x156E, "modem_stats_parse_156e_diag_log_ims_sip_message"},
        {0x1830, "modem_stats_parse_1830_diag_log_ims_volte_session_setup"},
        {0x1831, "modem_stats_parse_1831_diag_log_ims_volte_session_end"},
        {0x4179, "modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2"},
        {0x5096, "modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics"},
        {0xB062, "modem_stats_parse_b062_diag_log_lte_mac_rach_attempt"},
        {0xB064, "modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block"},
        {0xB0C2, "modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info"},
        {0xB111, "modem_stats_parse_b111_diag_log_lte_ll1_rx_agc"},
        {0xB14E, "modem_stats_parse_b14e_diag_log_lte_pusch_csf"},
        {0xB16D, "modem_stats_parse_b16d_diag_log_lte_tx_power"},
        {0xB16E, "modem_stats_parse_b16e_diag_log_lte_pusch_power_control"},
        {0xB16F, "modem_stats_parse_b16f_diag_log_lte_pucch_power_control"},
        {0xB173, "modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication"},
        {0xB193, "modem_stats_parse_b193_diag_log_lte_srv_meas"},
        {0xB823, "modem_stats_parse_b823_diag_log_nr5g_rrc_serving_cell_info"},
        {0xB825, "modem_stats_parse_b825_diag_log_nr5g_rrc_configuration_info"},
        {0xB872, "modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb"},
        {0xB883, "modem_stats_parse_b883_diag_log_nr5g_mac_ul_physical_channel_schedule_report"},
        {0xB884, "modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl"},
        {0xB885, "modem_stats_parse_b885_diag_log_nr5g_mac_dci_info"},
        {0xB887, "modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status"},
        {0xB888, "modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats"},
        {0xB88A, "modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt"},
        {0xB8A7, "modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report"},
        {0xB8C9, "modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc"},
        {0xB8D2, "modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power"},
        {0xB8D8, "modem_stats_parse_b8d8_diag_log_nr5g_ll1_log_serving_snr"},
        {0xB8DD, "modem_stats_parse_b8dd_diag_log_nr5g_ll1_fw_serving_ftl"},
        {0xB975, "modem_stats_parse_b975_diag_log_nr5g_mac_ml1_srv_beam"},
        {0xB97F, "modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext"},
        {0xB981, "modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information"},
        {0xB98F, "modem_stats_parse_b98f_diag_log_nr5g_ml1_antenna_switch_diversity"},
    };
    auto it = names.find(code);
    return it == names.end() ? "" : it->second;
}

std::string capture_path(const std::string &file)
{
    std::string dir = capture_files_dir();
    return dir.empty() ? "" : dir + "/" + file;
}

}  // namespace log_test
