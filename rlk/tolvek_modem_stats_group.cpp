#include "tolvek_modem_stats_group.h"

#include <stdio.h>
#include <stdlib.h>

#include "modem_stats_dispatch.h"
#include "tolvek_convert.h"
#include "tolvek_help.h"
#include "tolvek_test_groups.h"

namespace {

/* Words through the type (program, option, type), and through the id. */
constexpr int MODEM_STATS_MIN_WORDS = 3;
constexpr int MODEM_STATS_LOG_OR_EVENT_WORDS = 4;
constexpr int64_t MODEM_STATS_NOTHING_RAN = -1;
constexpr int MODEM_STATS_TYPE_LOG = 0;
constexpr unsigned MODEM_STATS_ID_MASK = 0xFFFF;
constexpr uint8_t MODEM_STATS_SAMPLE_SUB = 0;

const char NOTE_TOO_FEW[] = "\nnote: Too few parameters, Pls refer to the following cmd:";
const char NOTE_FIRST_PARAM[] = "\nnote: the first parameters should be %d, Pls refer to the following cmd:\n";

/* The sample bytes: a smoke test of the parsing path, the same whatever
 * the code. */
const uint8_t SAMPLE_PAYLOAD[TOLVEK_MODEM_STATS_SAMPLE_LEN] = {
    0x0f, 0x00, 0x03, 0x00, 0x00, 0x00, 0x00, 0x01, 0x13, 0x01, 0x3c, 0x05, 0x00, 0x01, 0x00, 0x00, 0x10,
    0x4d, 0xcd, 0x37, 0xf7, 0x00, 0xfa, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0xc0, 0x07, 0x00, 0x01, 0x02,
    0x1b, 0x06, 0x1d, 0x04, 0x3e, 0x20, 0x83, 0x10, 0x04, 0x10, 0x02, 0x3e, 0xef, 0x04, 0x3f, 0x80, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x88, 0xd0, 0x0e, 0x00, 0x37, 0x88, 0x1a, 0xa0, 0x05, 0x00, 0x00, 0x00, 0x00,
};

const tolvek_modem_stats_type_entry *find_type(const tolvek_modem_stats_type_entry *table, size_t table_len,
                                               int type)
{
    for (size_t i = 0; i < table_len; i++) {
        if (table[i].type == type) return &table[i];
    }
    return nullptr;
}

}  // namespace

int tolvek_test_modem_stats_log_or_event(int argc, char **argv)
{
    if (argc < MODEM_STATS_LOG_OR_EVENT_WORDS) {
        puts(NOTE_TOO_FEW);
        return 0;
    }
    int type = atoi(argv[2]);
    uint16_t id = static_cast<uint16_t>(static_cast<unsigned>(tolvek_string_to_int(argv[3])) & MODEM_STATS_ID_MASK);
    printf("length = %d, type = %d, id = %d(0x%x)\n", TOLVEK_MODEM_STATS_SAMPLE_LEN, type, id, id);

    /* Built afresh on each call: parsers may not change the caller's bytes,
     * but nothing depends on that. */
    uint8_t payload[TOLVEK_MODEM_STATS_SAMPLE_LEN];
    for (int32_t i = 0; i < TOLVEK_MODEM_STATS_SAMPLE_LEN; i++) payload[i] = SAMPLE_PAYLOAD[i];
    if (type != MODEM_STATS_TYPE_LOG) {
        modem_stats_diag_process_event_ex(TOLVEK_MODEM_STATS_SAMPLE_LEN, id, MODEM_STATS_SAMPLE_SUB, payload);
    } else {
        modem_stats_diag_process_log_ex(TOLVEK_MODEM_STATS_SAMPLE_LEN, id, MODEM_STATS_SAMPLE_SUB, payload);
    }
    return 1;
}

int64_t tolvek_modem_stats_group_run(int argc, char **argv, const tolvek_modem_stats_type_entry *table,
                                     size_t table_len)
{
    if (argc < MODEM_STATS_MIN_WORDS) {
        puts(NOTE_TOO_FEW);
        show_help(TOLVEK_OPTION_MODEM_STATS);
        return 0;
    }
    if (atoi(argv[1]) != TOLVEK_OPTION_MODEM_STATS) {
        printf(NOTE_FIRST_PARAM, TOLVEK_OPTION_MODEM_STATS);
        show_help(TOLVEK_OPTION_MODEM_STATS);
        return MODEM_STATS_NOTHING_RAN;
    }
    int type = atoi(argv[2]);
    const tolvek_modem_stats_type_entry *entry = find_type(table, table_len, type);
    if (!entry) {
        printf("invalid type = %d\n", type);
        show_help(TOLVEK_OPTION_MODEM_STATS);
        return MODEM_STATS_NOTHING_RAN;
    }
    int result = entry->handler(argc, argv);
    if (result == 0) {
        printf("%s FAIL\n", entry->name);
        show_help(TOLVEK_OPTION_MODEM_STATS);
    }
    return result;
}
