// The help printer.
#pragma once

#include <cstdint>
#include <optional>

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

// The checks the dispatchers of categories 3 and 4 make, in this order, before
// reading their sub-operation: an argument after the program name, argv[1]
// naming `category`, and a sub-operation given. A refusal prints its note and
// the category's help and returns what the help returned; nullopt when the
// checks pass.
std::optional<int32_t> velmar_category_refusal(int argc, char **argv, int category);
// A dispatcher's last step: a non-zero result is printed as an error line with
// the category's help. Returns the result.
int32_t velmar_report_result(int32_t result, int category);
