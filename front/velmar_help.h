// The help printer.
#pragma once

#include <cstdint>

// Prints the banner, the section of category n (every section when n is 0)
// and the closing line. Returns what the last console write returned.
int show_help(uint32_t n);
