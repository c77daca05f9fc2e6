/* AT channel device on a host: there is no modem serial device, so
 * RLK_AT_DEVICE may name the simulator's AT channel (rlk-modemd creates it
 * as <state>/at_channel; `rlk-modemd ctl at path` prints it). */
#include <stdlib.h>

#include "platform_at_channel.h"

extern "C" const char *platform_at_channel_device(const char *device)
{
    const char *env = getenv("RLK_AT_DEVICE");
    return env != nullptr && env[0] != '\0' ? env : device;
}
