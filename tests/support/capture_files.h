/* The public sample captures the tests read, through the product's capture
 * reader (replay/diag_capture.h). */
#ifndef RLK_TEST_CAPTURE_FILES_H
#define RLK_TEST_CAPTURE_FILES_H

#include <stdint.h>

#include <string>
#include <vector>

/* One log packet of a capture, its payload copied. */
struct capture_log_packet {
    uint16_t code;
    uint64_t timestamp;
    uint8_t sub;
    std::vector<uint8_t> payload;
};

/* Reads every log packet of the capture at `path`, in file order.  False
 * when the file cannot be read to its end. */
bool capture_read_logs(const std::string &path, std::vector<capture_log_packet> *out);

/* The packets of `code`, in order. */
std::vector<capture_log_packet> capture_logs_of(const std::vector<capture_log_packet> &logs, uint16_t code);

/* The captures folder the tests read (../shared/captures beside the
 * repository), or an empty string when it is absent. */
std::string capture_files_dir(void);

#endif
