// The few facts that differ between a phone and a host build. Product code asks
// here instead of testing the build target.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Path of the modem's AT command character device.
const char *rpk_at_device_path(void);

#ifdef __cplusplus
}
#endif
