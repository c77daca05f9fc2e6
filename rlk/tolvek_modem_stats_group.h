/* Option 7: diag statistics parsers fed with a fixed sample payload, and
 * the statistics debug information. */
#ifndef TOLVEK_MODEM_STATS_GROUP_H
#define TOLVEK_MODEM_STATS_GROUP_H

#include <stddef.h>
#include <stdint.h>

/* A sub-command of option 7, selected by the type word (argv[2]); nonzero
 * is success. */
typedef int (*tolvek_modem_stats_handler)(int argc, char **argv);

/* One row of the option-7 table: the type, its handler and the handler's
 * name, printed as "<name> FAIL" when it returns 0. */
struct tolvek_modem_stats_type_entry {
    int type;
    tolvek_modem_stats_handler handler;
    const char *name;
};

/* Length of the sample payload fed to the dispatchers. */
constexpr int32_t TOLVEK_MODEM_STATS_SAMPLE_LEN = 68;

/* "rlk 7 type(0/1) id": feeds the sample payload under `id` (decimal or
 * 0x-hexadecimal, low 16 bits kept) to the log dispatcher for type 0 and
 * the event dispatcher otherwise.  Returns 0 when an argument is missing,
 * else 1. */
int tolvek_test_modem_stats_log_or_event(int argc, char **argv);

/* The option-7 group entry over `table`:
 *   fewer than 3 words: "Too few parameters" note and help;
 *   argv[1] not 7: "the first parameters should be" note and help;
 *   a type without a row: "invalid type = %d" and help;
 *   a handler returning 0: "<name> FAIL" and help.
 * Returns the handler's result (-1 when nothing ran). */
int64_t tolvek_modem_stats_group_run(int argc, char **argv, const tolvek_modem_stats_type_entry *table,
                                     size_t table_len);

#endif
