// The simulated modem's answers to the inner records, without a daemon: what
// each request does to the store and what the response record says.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "modem_errors.h"
#include "modem_services.h"
#include "platform/host/link/rpk_host.h"
#include "sim_fixture.h"
#include "sim_text.h"

namespace rpk_sim {
namespace {

using rpk_sim_test::common;
using rpk_sim_test::nv_efs;
using rpk_sim_test::put;
using rpk_sim_test::Record;

uint32_t get(const Record &r, size_t at) { return rpk_sim_test::get(r.data() + at); }

Record words(std::initializer_list<uint32_t> w) {
  Record r(512, 0);
  size_t at = 0;
  for (uint32_t v : w) put(r, 4 * at++, v, 4);
  return r;
}

class ModemRecordsTest : public testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/rpk-modem-test-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    modem_ = std::make_unique<Modem>(dir_);
    modem_->store().ensure_factory();
  }
  void TearDown() override {
    modem_.reset();
    std::error_code ec;
    std::filesystem::remove_all(dir_, ec);
  }
  Record efs(const Record &req) { return modem_->nv_efs_request(req.data()); }

  std::string dir_;
  std::unique_ptr<Modem> modem_;
};

TEST_F(ModemRecordsTest, NvAndEfsResults) {
  const std::string long_path = "/" + std::string(71, 'p');
  struct Case {
    const char *name;
    Record req;
    int32_t result;
  };
  const Case cases[] = {
      {"read past the last item", nv_efs(1, 0, 7233), kNvBadParm},
      {"read on a third subscription", nv_efs(1, 2, 550), kNvBadParm},
      {"write nothing", nv_efs(2, 0, 100, "", 0), kNvBadParm},
      {"write 425 bytes", nv_efs(2, 0, 100, "", 425), kNvBadParm},
      {"delete an item never written", nv_efs(3, 0, 7001), kNvNotActive},
      {"unknown operation", nv_efs(9, 0, 0, "/x"), kEfsInval},
      {"read from past the end", nv_efs(4, 0, 0, "/nv/item_files/ims/IMS_enable", 0, 0, 2),
       kEfsInval},
      {"read a directory", nv_efs(4, 0, 0, "/nv/item_files"), kEfsIsDir},
      {"relative path", nv_efs(4, 0, 0, "nv/item_files"), kEfsInval},
      {"path leaving the tree", nv_efs(4, 0, 0, "/nv/../../x"), kEfsInval},
      {"empty path component", nv_efs(4, 0, 0, "/nv//x"), kEfsInval},
      {"temporary file name", nv_efs(4, 0, 0, "/nv/x.tmp.12"), kEfsInval},
      {"path longer than the record", nv_efs(4, 0, 0, long_path), kEfsNameTooLong},
      {"empty path", nv_efs(6, 0, 0, ""), kEfsInval},
      {"delete a missing file", nv_efs(6, 0, 0, "/no/such/file"), kEfsNoEnt},
      {"write chunk without a start", nv_efs(5, 0, 0, "/t/a", 800, 10, 414, "x"), kEfsInval},
      {"write chunk past the total", nv_efs(5, 0, 0, "/t/a", 10, 11, 0, "x"), kEfsInval},
  };
  for (const Case &c : cases) {
    Record rsp = efs(c.req);
    ASSERT_EQ(rsp.size(), 444u) << c.name;
    EXPECT_EQ(static_cast<int32_t>(get(rsp, 16)), c.result) << c.name;
  }
}

TEST_F(ModemRecordsTest, EfsWriteReplacesTheFileOnlyWithItsLastChunk) {
  // The product passes the terminator in the path length.
  const std::string path = "/nv/item_files/modem/velmar/rf_ant_port_config";
  const std::string with_nul(path.c_str(), path.size() + 1);
  ASSERT_EQ(modem_->store().efs_write(0, path, "old"), 0);
  std::string content;
  for (char c = 'a'; c <= 'z'; ++c) content.append(20, c);  // 520 bytes: two chunks
  EXPECT_EQ(get(efs(nv_efs(5, 0, 0, with_nul, 520, 414, 0, content.substr(0, 414))), 16), 0u);
  std::string now;
  modem_->store().efs_read(0, path, &now);
  EXPECT_EQ(now, "old");  // half a transfer changes nothing
  EXPECT_EQ(get(efs(nv_efs(5, 0, 0, with_nul, 520, 106, 414, content.substr(414))), 16), 0u);
  modem_->store().efs_read(0, path, &now);
  EXPECT_EQ(now, content);
  EXPECT_EQ(get(efs(nv_efs(6, 0, 0, with_nul)), 16), 0u);
  EXPECT_EQ(modem_->store().efs_read(0, path, &now), kEfsNoEnt);
}

TEST_F(ModemRecordsTest, CommonCommands) {
  constexpr auto kInvalid = static_cast<int32_t>(kQmiErrInvalidArg);
  struct Case {
    const char *name;
    Record req;
    int32_t result;
    std::vector<uint32_t> value;  // the answered v words
  };
  const Case cases[] = {
      {"card status get, bad sub", common(55, {2}), kInvalid, {}},
      {"card status set", common(57, {1, 1, 0}), 0, {1, 1, 0}},
      {"card status get after the set", common(55, {1}), 0, {0}},
      {"card status set, bad level", common(57, {0, 0, 2}), kInvalid, {}},
      {"restart, bad value", common(31, {0x3000}), kInvalid, {}},
      {"unknown type", common(77, {}), static_cast<int32_t>(kQmiErrNotSupported), {}},
      {"unknown kind", common(0, {}, 9), static_cast<int32_t>(kQmiErrNotSupported), {}},
      {"tx config, no sixth system", words({1, 0, 1, 5, 3, 0}), kInvalid, {}},
  };
  for (const Case &c : cases) {
    Outcome out;
    Record rsp = modem_->common_request(c.req.data(), out);
    ASSERT_EQ(rsp.size(), 508u) << c.name;
    EXPECT_EQ(static_cast<int32_t>(get(rsp, 4)), c.result) << c.name;
    EXPECT_EQ(out.after, AfterReply::kNothing) << c.name;
    if (get(rsp, 0) != 2) continue;
    EXPECT_EQ(get(rsp, 8), get(c.req, 8)) << c.name;  // the type is echoed
    ASSERT_EQ(get(rsp, 12), 4 * c.value.size()) << c.name;
    for (size_t i = 0; i < c.value.size(); ++i)
      EXPECT_EQ(get(rsp, 16 + 4 * i), c.value[i]) << c.name;
  }
  // The card state is the modem's: it outlives the daemon.
  EXPECT_EQ(Settings::load(dir_).card_present[1], 0u);
}

TEST_F(ModemRecordsTest, QcnBackupAndRestore) {
  Store &store = modem_->store();
  ASSERT_EQ(store.qcn_backup(true), kNvDone);
  ASSERT_EQ(store.nv_write(0, 550, std::string(9, '\x11')), kNvDone);
  ASSERT_EQ(store.qcn_restore(false), kNvDone);
  std::string v;
  store.nv_read(0, 550, &v);
  EXPECT_EQ(v, std::string(9, '\x11'));  // a private backup leaves the IMEI out
  ASSERT_EQ(store.qcn_restore(true), kNvDone);
  store.nv_read(0, 550, &v);
  EXPECT_EQ(v[0], 0x08);  // the golden copy holds the factory IMEI

  // A damaged backup changes nothing.
  std::string qcn;
  rpk_host::read_file(store.qcn_path(), qcn);
  rpk_host::write_file_atomic(store.qcn_path(), qcn.substr(0, qcn.size() - 3));
  ASSERT_EQ(store.nv_write(0, 6858, "kept"), kNvDone);
  EXPECT_EQ(store.qcn_restore(false), kNvFail);
  store.nv_read(0, 6858, &v);
  EXPECT_EQ(v, "kept");
}

// Request id 1: a backup or restore answers qcn_ms later than a fault alone
// would, and a read reports an item's true length beyond its 412-byte area.
TEST_F(ModemRecordsTest, NvStoreRecordTimingAndLength) {
  ASSERT_EQ(modem_->store().nv_write(0, 4678, std::string(424, 'A')), kNvDone);
  const uint32_t qcn_ms = modem_->settings().qcn_ms;
  const struct {
    uint32_t op, arg, delay_added;
  } cases[] = {{1, 4678, 0}, {4, 0, qcn_ms}, {5, 1, qcn_ms}};
  for (const auto &c : cases) {
    const Record req = words({c.op, c.arg});
    Outcome out;
    out.delay_ms = 11000;  // as a fault delay leaves it
    const Record rsp = modem_->nv_store_request(req.data(), out);
    EXPECT_EQ(get(rsp, 4), kNvDone) << c.op;
    EXPECT_EQ(out.delay_ms, 11000 + c.delay_added) << c.op;
    if (c.op != 1) continue;
    EXPECT_EQ(get(rsp, 16), 424u);
    EXPECT_EQ(rsp.size(), 432u);  // 412 bytes of the value from offset 20
    EXPECT_EQ(rsp.back(), 'A');
  }
}

}  // namespace
// The journal's hex: every byte value, at every place of the 16-byte steps
// and in the tail after them.
TEST(SimText, HexOfBytesAndIds) {
  std::vector<uint8_t> bytes(256 + 37);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
  for (size_t len = 0; len <= bytes.size(); len += (len < 40 ? 1 : 17)) {
    std::string want;
    for (size_t i = 0; i < len; ++i) {
      char pair[3];
      snprintf(pair, sizeof pair, "%02x", bytes[i]);
      want += pair;
    }
    EXPECT_EQ(to_hex(bytes.data(), len), want) << len;
  }
  for (uint32_t id : {0u, 0x11u, 0x0002u, 0xffe4u, 0x12345u, 0xffffffffu}) {
    char want[16];
    snprintf(want, sizeof want, "0x%04x", id);
    EXPECT_EQ(hex_id(id), want);
  }
}

}  // namespace rpk_sim
