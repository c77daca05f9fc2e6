/* A tiny client of the host platform for end-to-end tests: prints how many
 * extension-service servers the simulator lists, or sets and gets a
 * property ("platform_probe setprop KEY VALUE", "platform_probe getprop
 * KEY").  Started like rlk, so it exercises the same endpoint logic
 * (including starting the simulator on demand). */
#include <stdio.h>
#include <string.h>

#include "cutils/properties.h"
#include "qmi_client.h"
#include "tolvek_extend_service_v01.h"

int main(int argc, char **argv)
{
    if (argc == 4 && strcmp(argv[1], "setprop") == 0) {
        printf("%d\n", property_set(argv[2], argv[3]));
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
