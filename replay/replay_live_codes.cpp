/* What a live rlk-replay asks the modem for: the codes its parsers decode. */
#include "modem_stats_dispatch.h"
#include "replay_live_masks.h"
#include "replay_options.h"

void replay_live_codes(const replay_options &opts, replay_live_masks *m)
{
    m->codes.clear();
    m->events = false;
    if (opts.filter) {
        for (size_t c = 0; c < opts.logs.size(); c++) {
            if (opts.logs[c]) m->codes.push_back(uint16_t(c));
        }
        for (size_t e = 0; e < opts.events.size(); e++) m->events = m->events || opts.events[e];
        return;
    }
    modem_stats_parser_table logs = modem_stats_log_parser_table();
    for (size_t i = 0; i < logs.count; i++) m->codes.push_back(logs.rows[i].code);
    m->events = modem_stats_event_parser_table().count > 0;
}
