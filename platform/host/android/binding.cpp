// Host answers to the platform-dependent facts.
#include <string>

#include "platform/rpk_platform.h"
#include "platform/host/link/rpk_host.h"

#ifndef RPK_HOST_AT_DEVICE
#define RPK_HOST_AT_DEVICE ""
#endif

extern "C" const char *rpk_at_device_path(void) {
  // A build setting wins; otherwise a plain file in the state directory stands
  // in for the AT channel so tests can read what was sent.
  static const std::string path = [] {
    std::string configured = RPK_HOST_AT_DEVICE;
    return configured.empty() ? rpk_host::state_dir() + "/smd8" : configured;
  }();
  return path.c_str();
}
