/* A test fault of the QMUX device's control service: the answers to one
 * control message come late.  The request itself is served at once, as by
 * a modem whose answer is slow to reach the host (an allocation is made,
 * and the host learns its client id only when the answer arrives).
 *
 *   qmux delay-ctl MSG MS [COUNT]   the next COUNT (default 1) answers to
 *                                   control message MSG (0x22: allocate)
 *                                   are sent MS milliseconds late; MS 0
 *                                   clears the fault */
#ifndef MODEMD_QMUX_CTL_DELAY_H
#define MODEMD_QMUX_CTL_DELAY_H

#include <stdint.h>

#include <string>
#include <vector>

namespace modemd {

class qmux_ctl_delay {
public:
    /* "qmux delay-ctl ..." (args[1] == "delay-ctl"). */
    std::string control(const std::vector<std::string> &args);
    /* How late the answer to `msg_id` goes (counting it), 0: at once. */
    uint32_t take(uint16_t msg_id);

private:
    uint16_t msg_id_ = 0;
    uint32_t ms_ = 0;
    unsigned count_ = 0;
};

}  // namespace modemd

#endif
