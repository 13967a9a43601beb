// The help printer.
#pragma once

#include <cstdint>

// Prints the banner, the section of category n (every section when n is 0,
// in the category table's order) and the closing line. Returns what the last
// console write returned.
int show_help(uint32_t n);

// The help section of each category, as its row in the category table names
// it: a header line "<category>: ..." and the category's command lines.
void velmar_help_nv();
void velmar_help_rf();
void velmar_help_nvefs();
void velmar_help_cmn();
void velmar_help_qmi_send();
void velmar_help_modem_stats();
void velmar_help_at();
void velmar_help_qmi_modem_stats();

// The refusal notes that several handlers print before their help.
void velmar_note_too_few_parameters();
// True when argv[1] names `category`; otherwise prints the note saying which
// category the handler expected.
bool velmar_category_matches(char **argv, int category);
