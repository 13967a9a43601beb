// The help printer.
#pragma once

#include <cstdint>

// Prints the banner, the section of category n (every section when n is 0)
// and the closing line. Returns what the last console write returned.
int show_help(uint32_t n);

// The refusal notes that several handlers print before their help.
void velmar_note_too_few_parameters();
// True when argv[1] names `category`; otherwise prints the note saying which
// category the handler expected.
bool velmar_category_matches(char **argv, int category);
