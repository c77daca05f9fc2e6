/* Command line of rlk-mbn. */
#ifndef RLK_MBN_OPTIONS_H
#define RLK_MBN_OPTIONS_H

#include <stdint.h>

#include <string>
#include <vector>

#include "pdc_requests.h"

/* Default time one operation may take: activation on a real modem takes
 * tens of seconds. */
constexpr unsigned int k_mbn_default_timeout_s = 60;
constexpr unsigned int k_mbn_max_timeout_s = 3600;

enum mbn_command {
    MBN_CMD_NONE,
    MBN_CMD_LIST,
    MBN_CMD_INFO,
    MBN_CMD_SELECTED,
    MBN_CMD_LOAD,
    MBN_CMD_SELECT,
    MBN_CMD_ACTIVATE,
    MBN_CMD_DEACTIVATE,
    MBN_CMD_DELETE,
    MBN_CMD_HELP,
};

struct mbn_options {
    mbn_command command = MBN_CMD_NONE;
    uint32_t config_type = PDC_CONFIG_TYPE_MODEM_SW_V01;
    uint32_t sub = 0;
    unsigned int timeout_s = k_mbn_default_timeout_s;
    bool json = false;
    pdc_config_id id = {};   /* info, select, delete; load with --id */
    bool id_given = false;
    std::string file;        /* load */
};

/* Parses argv[1..]; false with `error` set when the words make no
 * command. */
bool mbn_parse_options(int argc, char **argv, mbn_options *out, std::string *error);

/* An id as the user writes it: the text itself, or "hex:" and its bytes
 * in hexadecimal (for ids that are not printable). */
bool mbn_parse_id(const std::string &text, pdc_config_id *out);
/* The id as it is shown: the text when printable, else "hex:...". */
std::string mbn_format_id(const uint8_t *bytes, uint32_t len);

extern const char k_mbn_usage[];

#endif
