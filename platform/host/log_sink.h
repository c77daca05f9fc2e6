/* Files that receive the system-log and Android-log lines of the host
 * platform.  RLK_SYSLOG_FILE and RLK_LOGCAT_FILE name them; by default they
 * are syslog.log and logcat.log beside the simulator's socket.  Each line is
 * written with one append, so concurrent runs never tear a line:
 *
 *   syslog.log:  <priority> TAB <message>
 *   logcat.log:  <buffer id> TAB <priority> TAB <tag> TAB <message>
 *
 * In messages a newline is written as \n, a tab as \t and a backslash as
 * \\, so that every record is one line. */
#ifndef RLK_HOST_LOG_SINK_H
#define RLK_HOST_LOG_SINK_H

#include <string>

namespace rlk_host {

/* Appends the escaped form of `text` to `out`. */
void log_escape(const char *text, size_t len, std::string *out);

}  // namespace rlk_host

#endif
