/* A tiny client of the host platform for end-to-end tests: prints how many
 * extension-service servers the simulator lists, or gets a property
 * ("platform_probe getprop KEY"), or asks the SAR state with a time-out
 * and exits with or without releasing its handle ("platform_probe sar-get
 * MS 1|0": prints the send's result and the state).  Started like rlk, so
 * it exercises the same endpoint logic (including starting the simulator
 * on demand). */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "cutils/properties.h"
#include "qmi_client.h"
#include "sar_service_v01.h"
#include "tolvek_extend_service_v01.h"

int main(int argc, char **argv)
{
    if (argc == 4 && strcmp(argv[1], "sar-get") == 0) {
        qmi_client_type handle = nullptr;
        qmi_client_os_params os = {};
        int rc = qmi_client_init_instance(sar_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr,
                                          &os, 2000, &handle);
        if (rc != QMI_NO_ERR) {
            printf("init %d\n", rc);
            return 1;
        }
        sar_rf_get_sar_state_resp_msg_v01 resp = {};
        rc = qmi_client_send_msg_sync(handle, QMI_SAR_RF_GET_STATE_REQ_MSG_V01, nullptr, 0, &resp, sizeof(resp),
                                      unsigned(strtoul(argv[2], nullptr, 10)));
        printf("%d %u\n", rc, resp.sar_rf_state);
        fflush(stdout);
        if (strcmp(argv[3], "1") == 0) qmi_client_release(handle);
        return 0;
    }
    if (argc == 3 && strcmp(argv[1], "getprop") == 0) {
        char value[PROPERTY_VALUE_MAX];
        int n = property_get(argv[2], value, "<unset>");
        printf("%d %s\n", n, value);
        return 0;
    }
    unsigned int services = 0;
    int rc = qmi_client_get_service_list(tolvek_extend_get_service_object_v01(), nullptr, nullptr, &services);
    printf("%d %u\n", rc, services);
    return 0;
}
