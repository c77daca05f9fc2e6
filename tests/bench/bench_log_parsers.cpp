/* Packets per second per diag log code through the log dispatcher (the
 * packets of log_parser_packets.txt), the Android-log lines into /dev/null.
 *
 *   bench_log_parsers [packets per case [log code]]   (default 300000, all codes)
 *   bench_log_parsers --show                prints what each case's packet decodes to */
#include "bench_common.h"

int main(int argc, char **argv)
{
    return bench::dispatch_bench("log_parser_packets.txt", "diag log parsers through the dispatcher", argc, argv);
}
