/* Lines of the PDC client: the radio log buffer, tag "PDC_UTIL";
 * progress at INFO, errors at ERROR. */
#ifndef PDC_LOG_H
#define PDC_LOG_H

#include "android/log.h"

#define PDC_LOG_TAG "PDC_UTIL"
#define PDC_LOGI(fmt, ...) __android_log_buf_print(LOG_ID_RADIO, ANDROID_LOG_INFO, PDC_LOG_TAG, fmt, ##__VA_ARGS__)
#define PDC_LOGE(fmt, ...) __android_log_buf_print(LOG_ID_RADIO, ANDROID_LOG_ERROR, PDC_LOG_TAG, fmt, ##__VA_ARGS__)

#endif
