/* The MBN operations of rlk-mbn over an open PDC client.  Each sends its
 * request(s) and waits on the operation's slot for the indication; every
 * wait ends at the run's deadline. */
#ifndef RLK_MBN_OPS_H
#define RLK_MBN_OPS_H

#include <stdint.h>

#include <chrono>
#include <string>
#include <vector>

#include "mbn_options.h"

/* Exit statuses. */
constexpr int k_mbn_exit_ok = 0;
constexpr int k_mbn_exit_failure = 1;
constexpr int k_mbn_exit_usage = 2;
constexpr int k_mbn_exit_timeout = 3;
constexpr int k_mbn_exit_no_memory = 4;
constexpr int k_mbn_exit_config_exists = 5;
constexpr int k_mbn_exit_frame_reset = 6;
constexpr int k_mbn_exit_no_mbn = 7;
constexpr int k_mbn_exit_no_device = 8;
constexpr int k_mbn_exit_service_restarted = 9;
constexpr int k_mbn_exit_signal_base = 128;

/* Largest file `load` sends. */
constexpr size_t k_mbn_max_file_size = 64u * 1024u * 1024u;

struct mbn_result {
    int exit_code = k_mbn_exit_ok;
    std::string error; /* empty on success */
};

/* What a run takes besides its options: the file of `load`, read before
 * the modem is touched, and the deadline of the whole run. */
struct mbn_input {
    std::vector<uint8_t> data;
    pdc_config_id load_id = {};
    std::chrono::steady_clock::time_point deadline;
};

/* What the operations found, for printing. */
struct mbn_report {
    bool listed = false;           /* list: the ids are complete (the selection query may still fail) */
    std::vector<std::string> ids; /* list, in the modem's order */
    std::string active, pending;  /* list, selected; formatted ids, empty: none */
    bool size_valid = false, version_valid = false;
    uint32_t size = 0, version = 0; /* info; load: size */
    std::string desc;
    std::string id; /* info, load, select, delete */
};

/* Reads the file of `load` and finds its id; nothing to do for the other
 * commands. */
mbn_result mbn_prepare(const mbn_options &o, mbn_input *in);

mbn_result mbn_run(const mbn_options &o, const mbn_input &in, mbn_report *report);

/* The failure text of a PDC result (and the QMI error behind -1). */
mbn_result mbn_result_of(int8_t result, uint16_t qmi_error, const char *what);
/* A request the modem refused in its response (positive QMI error) or
 * that went nowhere (negative QMI client error). */
mbn_result mbn_send_failure(int rc, const char *what);
/* The public name of a QMI error ("invalid id"), or null. */
const char *mbn_qmi_error_name(unsigned int code);

#endif
