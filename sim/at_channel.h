/* The simulated modem's AT port: a pseudo-terminal in raw mode whose
 * device the simulator links as <state>/at_channel.  What a process writes
 * to that device is split into command lines at each carriage return (or a
 * bare newline), recorded with its exact bytes and answered like a modem's
 * AT port (sim/at_commands.h); answers are read back from the same device.
 * The simulator keeps the device open itself, so writers may come and go.
 *
 * Control requests ("at ..."):
 *   at path            the device path to hand to the tool (RLK_AT_DEVICE)
 *   at received [n]    the last n command lines as they arrived (all kept,
 *                      at most 256), oldest first, bytes outside printable
 *                      ASCII written \r, \n, \\ or \xHH
 *   at clear           forgets the record and drops answers nobody read */
#ifndef MODEMD_AT_CHANNEL_H
#define MODEMD_AT_CHANNEL_H

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "at_commands.h"

namespace modemd {

class daemon;

/* Name of the device link in the state directory. */
constexpr const char *k_at_channel_link = "at_channel";
/* Command lines the record keeps, and the longest line kept whole. */
constexpr size_t k_at_record_max = 256;
constexpr size_t k_at_line_max = 1024;
/* Unread answers beyond this are dropped before a new one is queued. */
constexpr int k_at_unread_max = 2048;

class at_channel {
public:
    explicit at_channel(daemon &d) : d_(d) {}
    ~at_channel();
    at_channel(const at_channel &) = delete;
    at_channel &operator=(const at_channel &) = delete;

    /* Creates the pseudo-terminal and the link; false (with `error`) when
     * the host offers no pseudo-terminal. */
    bool open(std::string *error);
    /* "at ..." requests; args[0] is "at". */
    std::string control(const std::vector<std::string> &args);

    /* Bytes as a writer would send them (the device's reader uses this). */
    void on_bytes(const char *data, size_t len);

private:
    void on_readable();
    void end_line(char terminator);
    void reply(const std::string &text);

    daemon &d_;
    int master_ = -1;
    int slave_ = -1;
    std::string link_;
    std::string pending_;
    bool pending_cut_ = false; /* the line grew past k_at_line_max */
    bool last_was_cr_ = false;
    std::deque<std::string> received_;
    at_modem_state modem_;
};

/* Escapes `bytes` for the record: printable ASCII as is, \r \n \\ and
 * \xHH otherwise. */
std::string at_escape(const std::string &bytes);

std::unique_ptr<at_channel> make_at_channel(daemon &d);

}  // namespace modemd

#endif
