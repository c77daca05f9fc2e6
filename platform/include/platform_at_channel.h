/* The serial device of the modem's AT port.  On a handset it is the fixed
 * device the caller names; the host platform lets the environment variable
 * RLK_AT_DEVICE name another one (the simulator's AT channel). */
#ifndef RLK_PLATFORM_AT_CHANNEL_H
#define RLK_PLATFORM_AT_CHANNEL_H

#ifdef __cplusplus
extern "C" {
#endif

/* The device to write AT commands to: `device` itself on a handset. */
const char *platform_at_channel_device(const char *device);

#ifdef __cplusplus
}
#endif
#endif
