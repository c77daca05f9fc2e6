/* Option 7, sub-command 2: the debug counters of the modem-side statistics
 * framework, asked through the extension service and printed block by
 * block as a mask selects. */
#ifndef TOLVEK_MODEM_STATS_DEBUG_INFO_H
#define TOLVEK_MODEM_STATS_DEBUG_INFO_H

#include <stdint.h>

/* Mask bits of the blocks; 0 asks for the status check instead. */
#define TOLVEK_STATS_DEBUG_MAIN 0x1u
#define TOLVEK_STATS_DEBUG_DIAG 0x2u
#define TOLVEK_STATS_DEBUG_CM 0x4u
#define TOLVEK_STATS_DEBUG_UIM 0x8u

/* `rlk 7 2 mask`: 0 (with its note) when the mask is missing, else 1. */
int tolvek_test_modem_stats_get_debug_info(int argc, char **argv);
void tolvek_test_modem_stats_get_debug_info_do(uint32_t mask);

/* Block printers: print every field of the block at `p` and return the
 * block's size in bytes (0 for a null pointer). */
uint32_t tolvek_modem_stats_info_unpk(const uint8_t *p);
uint32_t tolvek_modem_stats_diag_info_unpk(const uint8_t *p);
uint32_t tolvek_modem_stats_cm_info_unpk(const uint8_t *p);
uint32_t tolvek_modem_stats_uim_info_unpk(const uint8_t *p);
/* Mask 0: prints the version and the main fields, then the verdict. */
void tolvek_modem_stats_support_status_check(const uint8_t *p);

#endif
