/* Log masks of a live diag port: rlk-replay reading a modem's diag port
 * (or rlk-modemd's --diag-port) asks the modem for the log packets it
 * decodes and for event reports, and turns them off again when it stops
 * (end, Ctrl-C, SIGTERM), as a modem keeps streaming to whoever reads its
 * port until told otherwise.
 *
 * Masks are set per equipment id (the log code's top nibble) with LOG_CONFIG
 * set-mask (0x73, op 3): the items of the wanted codes set, every other item
 * of that equipment id clear.  Stopping sets those equipment ids' masks
 * all clear and event reporting off, then waits (at most 500 ms) for the
 * modem's answers; what arrives meanwhile is not decoded.  The answers to
 * the masks set at the start go through the capture reader like any other
 * frame (they are neither logs nor events).  A port that does not answer
 * is read all the same. */
#ifndef RLK_REPLAY_LIVE_MASKS_H
#define RLK_REPLAY_LIVE_MASKS_H

#include <stdint.h>

#include <vector>

struct replay_live_masks {
    std::vector<uint16_t> codes; /* log codes asked for */
    bool events = false;         /* event reporting asked for */
    bool on = false;             /* the masks were sent */
};

/* Sends the masks of `m` on `fd`; true when they were written. */
bool replay_live_masks_enable(int fd, replay_live_masks *m);
/* Clears what replay_live_masks_enable set; true when answered in time. */
bool replay_live_masks_disable(int fd, replay_live_masks *m);

/* The LOG_CONFIG set-mask command for equipment id `equip`, covering its
 * items up to the highest one in `codes`: those items set when `set`,
 * every item clear otherwise. */
std::vector<uint8_t> replay_log_mask_command(uint32_t equip, const std::vector<uint16_t> &codes, bool set);

struct replay_options;
/* The codes and events a live run asks for: every log code and event with a
 * parser, or the selection of --log / --event (rlk-replay itself). */
void replay_live_codes(const replay_options &opts, replay_live_masks *m);

#endif
