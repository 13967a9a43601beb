// Category 4: NV items and EFS files from the command line,
//   rpk 4 <op> <sub> <nv_id | efs_path> [byte ...]
// Each sub-operation checks its own argument count (VELMAR_ERR_ARGC), reads
// sub as 0 when atoi gives 0 and as 1 otherwise, and returns 0 or the code of
// the NV/EFS layer. The dispatcher velmar_test_nvefs_do is in
// front/velmar_handlers.h.
#pragma once

#include <cstdint>

int32_t velmar_nvefs_test_nv_read(int argc, char **argv);
int32_t velmar_nvefs_test_nv_write(int argc, char **argv);
int32_t velmar_nvefs_test_nv_delete(int argc, char **argv);
int32_t velmar_nvefs_test_efs_read(int argc, char **argv);
// A data byte of 0 ends the data: the file holds the bytes before it.
int32_t velmar_nvefs_test_efs_write(int argc, char **argv);
int32_t velmar_nvefs_test_efs_delete(int argc, char **argv);
