// The NV/EFS layer's own checks: each refusal happens before any request (the
// unit tests have no modem, so reaching the client would block) and leaves the
// exact trace below on the console. The refusals the command line can reach
// (NV id 7233, 71-byte write and delete paths, 102411-byte writes) are pinned
// end to end instead.
#include "velmar_extend_qmi/velmar_extend_nvefs.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "common/velmar_status.h"
#include "support/capture_stdout.h"

namespace {

std::string trace(const std::string &fn, const std::vector<std::string> &lines) {
  std::string out = "RIL[" + fn + ":N]: function entry ------------->\n";
  for (const auto &l : lines) out += "RIL[" + fn + ":N]: " + l + "\n";
  return out + "RIL[" + fn + ":N]: function exit <-------------\n";
}

TEST(VelmarQmiResultMap, MovesOnlyClientCodes) {
  const struct {
    int32_t in, out;
  } cases[] = {{-1, -101}, {-2, -102}, {-3, -103}, {0, 0}, {-4, -4}, {-101, -101}, {7, 7}};
  for (const auto &c : cases) {
    int32_t got = 0;
    const std::string out = capture_stdout([&] { got = velmar_qmi_result_map(c.in); });
    EXPECT_EQ(got, c.out) << c.in;
    EXPECT_EQ(mask_log_lines(out),
              "RIL[velmar_qmi_result_map:N]: velmar_qmi_result_map, old_result " +
                  std::to_string(c.in) + ", new_result " + std::to_string(c.out) + "\n");
  }
}

struct Refusal {
  const char *name;
  std::function<int32_t()> call;
  int32_t want;
  std::string console;
};

TEST(VelmarNvefs, RefusesBadArgumentsBeforeAnyRequest) {
  static uint8_t buf[16];
  static uint32_t room = sizeof buf;
  static uint32_t zero_room = 0;
  const std::string path71(71, 'p');
  const char *p = path71.c_str();
  const std::string nv_range = "nv_id is out range(7232)";
  const std::string rd = "velmar_efs_read";
  const std::string wr = "velmar_efs_write";
  const Refusal cases[] = {
      {"nv write: id checked before length", [] { return velmar_nv_write(0, 7233, buf, 0); },
       VELMAR_ERR_NVEFS_NV_ID,
       trace("velmar_nv_write", {"velmar_nv_write, sub_id 0, nv_id: 7233, buf_len: 0", nv_range})},
      {"nv write 0 bytes", [] { return velmar_nv_write(0, 550, buf, 0); }, VELMAR_ERR_NVEFS_LEN,
       trace("velmar_nv_write",
             {"velmar_nv_write, sub_id 0, nv_id: 550, buf_len: 0", "buf_len is invalid"})},
      {"nv write 425 bytes", [] { return velmar_nv_write(0, 550, buf, 425); }, VELMAR_ERR_NVEFS_LEN,
       trace("velmar_nv_write",
             {"velmar_nv_write, sub_id 0, nv_id: 550, buf_len: 425", "buf_len is invalid"})},
      {"read sub 2 (checked before the path)",
       [] { return velmar_efs_read(2, nullptr, 0, nullptr, nullptr); }, VELMAR_ERR_NVEFS_SUB,
       trace(rd, {"velmar_efs_read, sub_id 2, path_len: 0", "sub invalid"})},
      {"read null path", [] { return velmar_efs_read(0, nullptr, 3, buf, &room); },
       VELMAR_ERR_NVEFS_PATH_NULL,
       trace(rd, {"velmar_efs_read, sub_id 0, path_len: 3", "efs_path is null"})},
      {"read empty path", [] { return velmar_efs_read(0, "/a", 0, buf, &room); },
       VELMAR_ERR_NVEFS_PATH_LEN,
       trace(rd, {"velmar_efs_read, sub_id 0, path_len: 0", "len invalid"})},
      {"read 72-byte path", [p] { return velmar_efs_read(0, p, 72, buf, &room); },
       VELMAR_ERR_NVEFS_PATH_LEN,
       trace(rd, {"velmar_efs_read, sub_id 0, path_len: 72", "len invalid"})},
      {"read null buffer", [p] { return velmar_efs_read(1, p, 71, nullptr, &room); },
       VELMAR_ERR_NVEFS_BUF_NULL,
       trace(rd, {"velmar_efs_read, sub_id 1, path_len: 71", "buf is null"})},
      {"read null length", [p] { return velmar_efs_read(1, p, 71, buf, nullptr); },
       VELMAR_ERR_NVEFS_LEN,
       trace(rd, {"velmar_efs_read, sub_id 1, path_len: 71", "p_buf_len is null"})},
      {"read zero room", [p] { return velmar_efs_read(1, p, 71, buf, &zero_room); },
       VELMAR_ERR_NVEFS_LEN,
       trace(rd, {"velmar_efs_read, sub_id 1, path_len: 71", "buf_len: 0", "buf_len is invalid"})},
      {"write negative path length", [p] { return velmar_efs_write(0, p, -1, buf, 1); },
       VELMAR_ERR_NVEFS_PATH_LEN,
       trace(wr, {"velmar_efs_write, sub_id 0, path_len: -1, buf_len: 1", "len invalid"})},
      {"write null buffer", [p] { return velmar_efs_write(0, p, 70, nullptr, 1); },
       VELMAR_ERR_NVEFS_BUF_NULL,
       trace(wr, {"velmar_efs_write, sub_id 0, path_len: 70, buf_len: 1", "buf is null"})},
      {"write 0 bytes", [p] { return velmar_efs_write(0, p, 70, buf, 0); }, VELMAR_ERR_NVEFS_LEN,
       trace(wr, {"velmar_efs_write, sub_id 0, path_len: 70, buf_len: 0", "buf_len is invalid"})},
  };
  for (const auto &c : cases) {
    int32_t got = 0;
    const std::string out = capture_stdout([&] { got = c.call(); });
    EXPECT_EQ(got, c.want) << c.name;
    EXPECT_EQ(mask_log_lines(out), c.console) << c.name;
  }
}

}  // namespace
