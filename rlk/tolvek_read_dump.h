/* The dump of what an NV or EFS read brought back, shared by the groups
 * that read modem state (options 3 and 4). */
#ifndef TOLVEK_READ_DUMP_H
#define TOLVEK_READ_DUMP_H

#include <stdint.h>

/* Most bytes a group reads and shows. */
#define TOLVEK_READ_SHOW_MAX 365

/* Error code of a sub-command given the wrong number of arguments. */
#define TOLVEK_ERR_ARG_COUNT 0xFFFF00A

/* Prints "\ndata len(<len>)\ndata: ", each byte as " %02X", then a newline.
 * A length past the buffer reaches index 365 and ends the process. */
void tolvek_print_read_data(const uint8_t (&data)[TOLVEK_READ_SHOW_MAX], uint32_t len);

/* Writes the line every failed NV/EFS sub-command prints and returns
 * `result`. */
int tolvek_report_efs_failure(int result);

#endif
