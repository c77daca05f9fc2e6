/* Option 10: MBN configurations through the PDC client. */
#ifndef TOLVEK_TEST_MBN_H
#define TOLVEK_TEST_MBN_H

#include <stdint.h>

#include "qtimutex/QtiMutex.h"

/* Result of the last pdc_init (0: the client is open); non-zero before the
 * first one. */
extern int32_t g_pdc_init_status;

/* The group's shared record: progress values cleared whenever the PDC
 * client is opened. */
struct tovlek_pdc_mbn_info {
    qtimutex::QtiSharedMutex mutex;
    uint32_t progress;
    uint64_t progress_received;
    uint64_t progress_total;
};
extern tovlek_pdc_mbn_info g_tovlek_pdc_mbn_info;

/* Opens the PDC client unless it is open already (force_init: release and
 * open again); returns g_pdc_init_status. */
int32_t tolvek_test_mbn_pdc_init(int force_init);

#endif
