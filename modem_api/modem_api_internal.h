/* Shared between the files of the modem API layer. */
#ifndef MODEM_API_INTERNAL_H
#define MODEM_API_INTERNAL_H

#include "modem_api.h"

/* The QMI client a registered vs client sends on; null when the id names
 * no vs client or the service is not open. */
qmi_client_type modem_api_handle_of(int32_t client_id);

#endif
