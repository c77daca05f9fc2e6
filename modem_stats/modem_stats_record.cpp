#include "modem_stats_record.h"

#include <stdio.h>
#include <stdlib.h>

namespace {

modem_stats_record_observer_fn g_record_observer = nullptr;

}  // namespace

int modem_stats_new_single_ex(modem_stats_data_id_e_type id, uint32_t size, uint8_t reserved,
                              modem_stats_single_data_common_type **out)
{
    (void)reserved;
    /* size - 1 taken as unsigned refuses 0 and everything above the maximum
     * with one comparison. */
    if (size - 1u >= MODEM_STATS_RECORD_MAX_LEN) {
        printf("data_len(%d) should be in (0, 700]", static_cast<int>(size));
        return 0;
    }
    if (!out) return 0;
    auto *record =
        static_cast<modem_stats_single_data_common_type *>(malloc(sizeof(modem_stats_single_data_common_type)));
    if (!record) return 0;
    *out = record;
    record->data = static_cast<uint8_t *>(malloc(size));
    if (!record->data) {
        /* Treated as no record rather than a record without data. */
        free(record);
        *out = nullptr;
        return 0;
    }
    record->data_len = size;
    record->data_id = id;
    return 1;
}

void modem_stats_data_check_and_update_for_diag(modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type id,
                                                modem_stats_single_data_common_type *record)
{
    if (!record) return;
    if (g_record_observer) g_record_observer(sub, id, record);
    free(record->data);
    free(record);
}

void modem_stats_set_record_observer(modem_stats_record_observer_fn observer)
{
    g_record_observer = observer;
}
