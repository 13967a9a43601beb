// The category table: argv[1] (by atoi) selects one row; the help printer
// assembles the whole help from the rows' sections, in the table's order.
#pragma once

#include <cstdint>
#include <span>

using velmar_handler = int32_t (*)(int argc, char **argv);

struct velmar_category {
  int category;            // argv[1]; the table is sorted by it
  const char *name;        // for tests and diagnostics
  velmar_handler handler;  // null while the category is not built: full help
  void (*help)();          // prints the category's help section
};

std::span<const velmar_category> velmar_categories();

// The row of `category`, or null for a category the tool does not have.
const velmar_category *velmar_category_find(int category);

// The entry's whole behaviour; returns 0 in every case.
int velmar_main(int argc, char **argv);
