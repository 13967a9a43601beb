// Captures what a call writes to the real stdout file descriptor, so printf
// output (trailing blanks included) can be compared byte for byte.
#pragma once

#include <functional>
#include <string>

std::string capture_stdout(const std::function<void()> &body);

// Replaces the line number of console log lines ("RIL[fn:123]: ") with N.
std::string mask_log_lines(const std::string &text);
