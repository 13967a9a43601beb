// Category 4 command lines that are refused before any request: the
// exact console text, help section included.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "front/velmar_handlers.h"
#include "support/run_handler.h"

namespace {

struct CmdCase {
  std::vector<std::string> args;
  std::string before_help;  // all that is printed before the help section
};

TEST(VelmarTestNvefsDo, RefusalsPrintANoteAndTheSection) {
  const std::string argc_error = "\nnote: Error happen! error_code(268431370)\n";
  const std::string need5 = "\nnote: need 5 inputs, Pls refer to the following cmd:\n";
  const std::string few_inputs = "\nnote: Too few inputs, Pls refer to the following cmd:\n";
  const std::string few = "\nnote: Too few parameters, Pls refer to the following cmd:\n";
  const std::string invalid =
      "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n";
  const CmdCase cases[] = {
      {{"rpk"}, few},
      {{"rpk", "4"}, few},
      {{"rpk", "5", "1"},
       "\nnote: the first parameters should be 4, Pls refer to the following "
       "cmd:\n"},
      {{"rpk", "4abc", "0"}, invalid},
      {{"rpk", "4", "7"}, invalid},
      {{"rpk", "4", "x"}, invalid},
      {{"rpk", "4", "1", "0"}, need5 + argc_error},
      {{"rpk", "4", "1", "0", "550", "1"}, need5 + argc_error},
      {{"rpk", "4", "2", "0", "550"}, few_inputs + argc_error},
      {{"rpk", "4", "3", "0"}, need5 + argc_error},
      {{"rpk", "4", "4", "0"}, need5 + argc_error},
      {{"rpk", "4", "5", "0", "/f"}, few_inputs + argc_error},
      {{"rpk", "4", "6", "0", "/f", "1"}, need5 + argc_error},
  };
  for (const auto &c : cases) {
    std::string out;
    run_handler(velmar_test_nvefs_do, c.args, &out);
    EXPECT_EQ(out, c.before_help + help_text(4)) << testing::PrintToString(c.args);
  }
}

TEST(VelmarTestNvefsDo, LayerRefusalsAreReportedWithTheirCode) {
  const std::string fail = "velmar_extend_qmi_send_sync fail, REQUEST_ID_EFS\n";
  const std::string wr = "RIL[velmar_efs_write:N]: ";
  const std::string rd = "RIL[velmar_nv_read:N]: ";
  const std::string path71(71, 'a');
  const CmdCase cases[] = {
      // 7233 and -1 are both above 7232 as unsigned numbers; sub 2 means 1.
      {{"rpk", "4", "1", "2", "7233"},
       rd + "function entry ------------->\n" + rd + "velmar_nv_read, sub_id 1, nv_id: 7233\n" +
           rd + "nv_id is out range(7232)\n" + rd + "function exit <-------------\n" + fail +
           "\nnote: Error happen! error_code(-109)\n"},
      {{"rpk", "4", "1", "-1", "-1"},
       rd + "function entry ------------->\n" + rd + "velmar_nv_read, sub_id 1, nv_id: -1\n" + rd +
           "nv_id is out range(7232)\n" + rd + "function exit <-------------\n" + fail +
           "\nnote: Error happen! error_code(-109)\n"},
      // A first data byte of 0 leaves nothing to write.
      {{"rpk", "4", "5", "0", "/f", "0", "7"},
       wr + "function entry ------------->\n" + wr +
           "velmar_efs_write, sub_id 0, path_len: 2, buf_len: 0\n" + wr + "buf_len is invalid\n" +
           wr + "function exit <-------------\n" + fail +
           "\nnote: Error happen! error_code(-108)\n"},
      {{"rpk", "4", "5", "0", path71, "1"},
       wr + "function entry ------------->\n" + wr +
           "velmar_efs_write, sub_id 0, path_len: 71, buf_len: 1\n" + wr + "len invalid\n" + wr +
           "function exit <-------------\n" + fail + "\nnote: Error happen! error_code(-106)\n"},
  };
  for (const auto &c : cases) {
    std::string out;
    run_handler(velmar_test_nvefs_do, c.args, &out);
    EXPECT_EQ(out, c.before_help + help_text(4)) << testing::PrintToString(c.args);
  }
}

}  // namespace
