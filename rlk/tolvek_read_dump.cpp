#include "tolvek_read_dump.h"

#include <stdio.h>

void tolvek_print_read_data(const uint8_t (&data)[TOLVEK_READ_SHOW_MAX], uint32_t len)
{
    printf("\ndata len(%d)\ndata: ", int(len));
    for (uint32_t i = 0; i < len; ++i) {
        printf(" %02X", data[i]);
    }
    printf("\n");
}

int tolvek_report_efs_failure(int result)
{
    puts("tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS");
    return result;
}
