// The category table: argv[1] (by atoi) selects one row.
#pragma once

#include <cstdint>
#include <span>

using velmar_handler = int32_t (*)(int argc, char **argv);

struct velmar_category {
  int category;
  const char *name;        // for tests and diagnostics
  velmar_handler handler;  // null while the category is not built: full help
};

std::span<const velmar_category> velmar_categories();

// The row of `category`, or null for a category the tool does not have.
const velmar_category *velmar_category_find(int category);

// The entry's whole behaviour; returns 0 in every case.
int velmar_main(int argc, char **argv);
