/* Statistics records: one kind (data id) and 1 to 700 bytes of packed
 * little-endian fields. */
#ifndef MODEM_STATS_RECORD_H
#define MODEM_STATS_RECORD_H

#include <stdint.h>

#include "modem_stats_data_id.h"

/* Largest record data, in bytes. */
constexpr uint32_t MODEM_STATS_RECORD_MAX_LEN = 700;

/* A record, owned by whoever holds the pointer. */
typedef struct {
    modem_stats_data_id_e_type data_id; /* kind of statistics */
    uint8_t *data;                      /* packed fields, separately allocated */
    uint32_t data_len;                  /* bytes in data: 1 to 700 */
} modem_stats_single_data_common_type;

/* Allocates a record of `size` bytes of data under `id` and stores its
 * pointer through `out` at once.  `reserved` is ignored.  A size of 0 or
 * above 700 prints "data_len(%d) should be in (0, 700]" (no newline) and
 * leaves `out` untouched.  Returns 1 when a record was made, 0 otherwise. */
int modem_stats_new_single_ex(modem_stats_data_id_e_type id, uint32_t size, uint8_t reserved,
                              modem_stats_single_data_common_type **out);

/* Hands a finished record over: frees its data and then the record.  A null
 * record is ignored. */
void modem_stats_data_check_and_update_for_diag(modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type id,
                                                modem_stats_single_data_common_type *record);

/* Called with every record handed over, just before it is freed; null (the
 * default) calls nothing.  Lets a test see the records a dispatch made. */
typedef void (*modem_stats_record_observer_fn)(modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type id,
                                               const modem_stats_single_data_common_type *record);
void modem_stats_set_record_observer(modem_stats_record_observer_fn observer);

#endif
