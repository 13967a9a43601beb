// Host answers to the platform-dependent facts.
#include <cstddef>
#include <string>

#include "platform/host/link/rpk_host.h"
#include "platform/rpk_platform.h"

#ifndef RPK_HOST_AT_DEVICE
#define RPK_HOST_AT_DEVICE ""
#endif

// The AT command goes out in a shell command of at most 500 bytes, 111 of
// them taken by the echo and a 100-character command: a device path of the
// length a state directory may have leaves plenty of room.
inline constexpr size_t kAtDevicePathMax = rpk_host::kStateDirMax + sizeof "/smd8" - 1;
static_assert(sizeof RPK_HOST_AT_DEVICE - 1 <= kAtDevicePathMax,
              "RPK_HOST_AT_DEVICE is too long for the AT shell command");

extern "C" const char *rpk_at_device_path(void) {
  // A build setting wins; otherwise a plain file in the state directory stands
  // in for the AT channel so tests can read what was sent.
  static const std::string path = [] {
    std::string configured = RPK_HOST_AT_DEVICE;
    if (!configured.empty()) return configured;
    const std::string dir = rpk_host::state_dir();
    // Refused here, with the reason, rather than as an overlong command.
    if (dir.size() > rpk_host::kStateDirMax)
      rpk_host::platform_failure(rpk_host::state_dir_problem());
    return dir + "/smd8";
  }();
  return path.c_str();
}
