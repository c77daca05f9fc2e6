/* Client kinds and operational statuses shared by the vs client and the
 * modem API layer. */
#ifndef MODEM_API_TYPES_H
#define MODEM_API_TYPES_H

typedef enum {
    MODEM_API_QMI_CLIENT_VS = 0,
    MODEM_API_QMI_CLIENT_SAR = 1,
    MODEM_API_QMI_CLIENT_NAS_0 = 2,
    MODEM_API_QMI_CLIENT_NAS_1 = 3,
    MODEM_API_QMI_CLIENT_MAX = 4, /* first invalid kind */
} modem_api_qmi_client_e_type;

typedef enum {
    MODEM_API_OPERATIONAL_STATUS_THREAD_FAIL = 0, /* release thread could not start */
    MODEM_API_OPERATIONAL_STATUS_READY = 3,       /* opened again after the service came back */
    MODEM_API_OPERATIONAL_STATUS_SUSPEND = 4,     /* service went down */
    MODEM_API_OPERATIONAL_STATUS_RELEASED = 5,    /* released, waiting for the service */
    MODEM_API_OPERATIONAL_STATUS_RESUME = 6,      /* service is back */
    MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL = 7, /* resume could not start, or reopening failed */
} modem_api_operational_status_type;

#endif
