// Phone answers to the platform-dependent facts.
#include "platform/rpk_platform.h"

extern "C" const char *rpk_at_device_path(void) { return "/dev/smd8"; }
