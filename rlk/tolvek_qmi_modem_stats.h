/* The steps of option 9, for the group entry and for tests. */
#ifndef TOLVEK_QMI_MODEM_STATS_H
#define TOLVEK_QMI_MODEM_STATS_H

#include <stdint.h>

#include "modem_api_types.h"

/* The group's client of the modem API; -1 while none is registered. */
extern int32_t g_orvex_client_id;

void tolvek_qmi_modem_stats_api_init(void);
void tolvek_qmi_modem_stats_api_deinit(void);
int tolvek_test_qmi_modem_stats_start(void);
/* Asks for item `id` of subscription `sub` and takes it into the reader. */
int tolvek_test_qmi_modem_stats_get(int sub, int id);
/* Runs opt (see the option's help) on subscription `sub`. */
int tolvek_test_qmi_modem_stats_hdl(int opt, int sub);

void tolvek_test_qmi_modem_stats_callback_event_cb(uint32_t event, modem_api_qmi_client_e_type kind, void *user_data);
void tolvek_test_qmi_modem_stats_operational_status_cb(modem_api_qmi_client_e_type kind,
                                                       modem_api_operational_status_type status, void *user_data);

#endif
