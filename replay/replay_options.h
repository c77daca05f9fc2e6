/* Command line of rlk-replay. */
#ifndef RLK_REPLAY_OPTIONS_H
#define RLK_REPLAY_OPTIONS_H

#include <stdint.h>

#include <string>
#include <vector>

#include "diag_capture.h"
#include "replay_summary.h"

enum replay_output_mode : uint8_t {
    REPLAY_OUTPUT_TEXT = 0,    /* header line and parser lines per packet, then the summary */
    REPLAY_OUTPUT_SUMMARY = 1, /* the summary alone */
    REPLAY_OUTPUT_JSON = 2,    /* one JSON object per packet, then a summary object */
};

/* Exit statuses. */
constexpr int REPLAY_EXIT_OK = 0;
constexpr int REPLAY_EXIT_INPUT = 1;       /* an input could not be opened or read to its end */
constexpr int REPLAY_EXIT_USAGE = 2;       /* a usage error */
constexpr int REPLAY_EXIT_SIGNAL_BASE = 128; /* interrupted: 128 + the signal number */

struct replay_options {
    replay_options() : logs(REPLAY_LOG_CODES, false), events(REPLAY_EVENT_IDS, false) {}

    diag_capture_format format = DIAG_FORMAT_AUTO;
    replay_output_mode mode = REPLAY_OUTPUT_TEXT;
    bool filter = false;      /* only the selected codes and ids are decoded */
    std::vector<bool> logs;   /* selected log codes */
    std::vector<bool> events; /* selected event ids */
    bool progress = true;     /* progress on standard error when it is a terminal */
    std::string pcap;         /* --pcap: where the GSMTAP records go ("-": standard
                                 output, the text output then goes to standard
                                 error); empty: no pcap */
    bool help = false;
    std::vector<std::string> inputs; /* paths; "-" is standard input */
};

/* Parses the arguments after the program name.  On a usage error returns
 * false with the reason in *error. */
bool replay_parse_options(int argc, const char *const *argv, replay_options *opts, std::string *error);

/* The --help text. */
const char *replay_help_text(void);

#endif
