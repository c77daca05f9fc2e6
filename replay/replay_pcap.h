/* The --pcap output of a replay: the signalling messages of the log
 * packets as GSMTAP records in a pcap stream (gsmtap_pcap.h), counted for
 * the summary.
 *
 * Records are built in memory and written whole: one write(2) per flush of
 * whole records, with SIGINT and SIGTERM blocked while it runs, so the file
 * holds only whole records whenever the run stops. */
#ifndef RLK_REPLAY_PCAP_H
#define RLK_REPLAY_PCAP_H

#include <string>

#include "diag_packet.h"
#include "replay_summary.h"

/* Records held before they are written out. */
constexpr size_t REPLAY_PCAP_FLUSH_AT = 1 << 20;

class replay_pcap {
public:
    replay_pcap() = default;
    ~replay_pcap();
    replay_pcap(const replay_pcap &) = delete;
    replay_pcap &operator=(const replay_pcap &) = delete;

    /* Creates `path` ("-": standard output) and writes the file header.
     * False with the reason in *error. */
    bool open(const std::string &path, std::string *error);
    bool is_open() const { return fd_ >= 0; }
    /* Writes the message of a log packet, if it carries one we write. */
    void packet(const diag_packet &pkt, replay_counts *counts);
    /* Writes the records held; false once a write has failed. */
    bool flush();
    /* Flushes and closes; false when a write or the close failed. */
    bool close();

private:
    int fd_ = -1;
    bool own_fd_ = false;
    bool failed_ = false;
    std::string buf_;
};

#endif
