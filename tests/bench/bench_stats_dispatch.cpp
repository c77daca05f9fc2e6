/* Packets per second through both diag statistics dispatchers (the cases
 * of stats_dispatch_packets.txt: events known and unknown, logs of
 * registered parsers and an unknown code).
 *
 *   bench_stats_dispatch [packets per case [code]]   (default 300000) */
#include "bench_common.h"

int main(int argc, char **argv)
{
    return bench::dispatch_bench("stats_dispatch_packets.txt", "diag statistics dispatch", argc, argv);
}
