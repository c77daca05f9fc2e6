/* One replay run: takes the packets of the capture reader, decodes each
 * through the statistics dispatchers and writes what they printed in the
 * chosen form, counting for the summary.
 *
 * The parsers print on the C library's standard output.  While the session
 * runs, `stdout` is a stream of the session's own (fopencookie): in text
 * mode it appends to the output after the packet's header line, in JSON
 * mode to the packet's lines, in summary mode nowhere.  The real standard
 * output stream receives the session's output.  Records and version
 * refusals are seen through the statistics observers.
 *
 * Single-threaded; one session at a time. */
#ifndef RLK_REPLAY_SESSION_H
#define RLK_REPLAY_SESSION_H

#include <stdio.h>
#include <sys/types.h>

#include <string>

#include "diag_capture.h"
#include "modem_stats_record.h"
#include "replay_options.h"
#include "replay_pcap.h"
#include "replay_summary.h"

/* Output held before it is written out. */
constexpr size_t REPLAY_OUTPUT_FLUSH_AT = 1 << 20;
/* Buffer of the parsers' stream. */
constexpr size_t REPLAY_CAPTURE_BUFFER = 1 << 16;

class replay_session {
public:
    explicit replay_session(const replay_options &opts);
    ~replay_session();
    replay_session(const replay_session &) = delete;
    replay_session &operator=(const replay_session &) = delete;

    /* Takes over standard output and the observers.  False (with errno)
     * when the capture stream cannot be made. */
    bool begin();
    /* Gives them back; writes what is pending.  Called by the destructor
     * when not called before. */
    void end();

    diag_capture_reader &reader() { return reader_; }
    replay_counts &counts() { return counts_; }
    /* Name of the input being read (for JSON lines). */
    void set_input(const std::string &name) { input_ = name; }

    /* Opens the --pcap output when one was asked for; false with the
     * reason in *error. */
    bool open_pcap(std::string *error);
    /* Writes the output held so far to standard output (standard error
     * when the pcap goes to standard output) and the pcap records held;
     * false when that fails. */
    bool flush();
    /* Writes the summary (text or JSON) and flushes. */
    bool write_summary();

private:
    static void on_packet(void *ctx, const diag_packet &pkt);
    static ssize_t capture_write(void *cookie, const char *buf, size_t size);
    static void on_record(modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type id,
                          const modem_stats_single_data_common_type *record);
    static void on_version(uint32_t id, int32_t version);

    void packet(const diag_packet &pkt);
    void dispatch(const diag_packet &pkt);
    void kept_record_after();
    void add_record(uint32_t id, const uint8_t *data, uint32_t len);
    void append_json(uint64_t number, const diag_packet &pkt);

    const replay_options &opts_;

public:
    const replay_options &options() const { return opts_; }
    diag_capture_reader reader_;
    replay_counts counts_;
    std::string input_;
    FILE *real_stdout_ = nullptr;
    replay_pcap pcap_;
    FILE *capture_ = nullptr;
    std::string *sink_ = nullptr; /* where the parsers' text goes; null: nowhere */
    std::string out_;             /* output not yet written */
    std::string lines_;           /* a packet's text in JSON mode */
    std::string records_json_;    /* a packet's records in JSON mode */
    std::string kept_before_;     /* the kept record's bytes before a packet */
    const void *kept_ptr_before_ = nullptr;
    bool write_failed_ = false;
};

#endif
