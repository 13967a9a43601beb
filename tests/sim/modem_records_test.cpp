// The simulated modem's answers to the inner records, without a daemon: what
// each request does to the store and what the response record says.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "modem_errors.h"
#include "modem_services.h"
#include "qmi_idl_codec.h"
#include "rpk_host.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace rpk_sim {
namespace {

using Record = std::vector<uint8_t>;

void put(Record &r, size_t at, uint64_t v, int n) {
  for (int i = 0; i < n; ++i) r[at + i] = static_cast<uint8_t>(v >> (8 * i));
}

uint32_t get(const Record &r, size_t at) {
  return r[at] | (r[at + 1] << 8) | (r[at + 2] << 16) | (static_cast<uint32_t>(r[at + 3]) << 24);
}

// NV/EFS request record (request id 2).
Record nv_efs(uint8_t op, uint8_t sub, uint16_t item, const std::string &path = "",
              uint32_t all = 0, uint32_t send = 0, uint32_t cur = 0, const std::string &data = "") {
  Record r(512, 0);
  r[0] = op;
  r[1] = sub;
  put(r, 2, item, 2);
  r[4] = static_cast<uint8_t>(path.size());
  memcpy(r.data() + 5, path.data(), std::min<size_t>(path.size(), 71));
  put(r, 76, all, 4);
  put(r, 80, send, 4);
  put(r, 84, cur, 4);
  memcpy(r.data() + 88, data.data(), data.size());
  return r;
}

Record common(uint32_t t, std::vector<uint32_t> v, uint32_t kind = 2) {
  Record r(512, 0);
  put(r, 0, kind, 4);
  put(r, 8, t, 4);
  put(r, 12, 4 * v.size(), 4);
  for (size_t i = 0; i < v.size(); ++i) put(r, 16 + 4 * i, v[i], 4);
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
  Record cmn(const Record &req) {
    Outcome out;
    return modem_->common_request(req.data(), out);
  }

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
      {"read the IMEI", nv_efs(1, 0, 550), kNvDone},
      {"read an item never written", nv_efs(1, 0, 7000), kNvNotActive},
      {"read past the last item", nv_efs(1, 0, 7233), kNvBadParm},
      {"read on a third subscription", nv_efs(1, 2, 550), kNvBadParm},
      {"write nothing", nv_efs(2, 0, 100, "", 0), kNvBadParm},
      {"write 425 bytes", nv_efs(2, 0, 100, "", 425), kNvBadParm},
      {"delete an item never written", nv_efs(3, 0, 7001), kNvNotActive},
      {"unknown operation", nv_efs(9, 0, 0, "/x"), kEfsInval},
      {"read a missing file", nv_efs(4, 0, 0, "/no/such/file"), kEfsNoEnt},
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

TEST_F(ModemRecordsTest, EfsReadsComeInChunksOfTheChosenSize) {
  const std::string path = "/nv/item_files/modem/velmar/rf_cal_data";  // 1000 bytes
  struct Case {
    uint32_t chunk;
    std::vector<uint32_t> sends;
  };
  const Case cases[] = {
      {424, {424, 424, 152, 0}},
      {100, {100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 0}},
      {999, {424, 424, 152, 0}},  // never more than the record holds
  };
  std::string expected;
  modem_->store().efs_read(0, path, &expected);
  ASSERT_EQ(expected.size(), 1000u);
  for (const Case &c : cases) {
    modem_->efs_chunk = c.chunk;
    std::string got;
    for (uint32_t send : c.sends) {
      Record rsp = efs(nv_efs(4, 0, 0, path, 0, 0, static_cast<uint32_t>(got.size())));
      EXPECT_EQ(get(rsp, 16), 0u);
      EXPECT_EQ(get(rsp, 4), 1000u);
      EXPECT_EQ(get(rsp, 8), send) << "chunk " << c.chunk << " at " << got.size();
      got.append(reinterpret_cast<const char *>(rsp.data() + 20), get(rsp, 8));
    }
    EXPECT_EQ(got, expected) << "chunk " << c.chunk;
  }
  EXPECT_EQ(get(efs(nv_efs(4, 0, 0, path, 0, 0, 1001)), 16), static_cast<uint32_t>(kEfsInval));
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
  struct Case {
    const char *name;
    Record req;
    int32_t result;
    std::vector<uint32_t> value;  // the answered v words
  };
  const Case cases[] = {
      {"card status query", common(39, {}), 0, {1}},
      {"card status get", common(55, {1}), 0, {1}},
      {"card status get, bad sub", common(55, {2}), static_cast<int32_t>(kQmiErrInvalidArg), {}},
      {"card status set", common(57, {1, 1, 0}), 0, {1, 1, 0}},
      {"card status get after the set", common(55, {1}), 0, {0}},
      {"card status set, bad level",
       common(57, {0, 0, 2}),
       static_cast<int32_t>(kQmiErrInvalidArg),
       {}},
      {"card type", common(56, {}), 0, {2}},
      {"nv sync", common(35, {}), 0, {}},
      {"restart, bad value", common(31, {0x3000}), static_cast<int32_t>(kQmiErrInvalidArg), {}},
      {"unknown type", common(77, {}), static_cast<int32_t>(kQmiErrNotSupported), {}},
      {"unknown kind", common(0, {}, 9), static_cast<int32_t>(kQmiErrNotSupported), {}},
  };
  for (const Case &c : cases) {
    Record rsp = cmn(c.req);
    ASSERT_EQ(rsp.size(), 508u) << c.name;
    EXPECT_EQ(static_cast<int32_t>(get(rsp, 4)), c.result) << c.name;
    if (get(rsp, 0) != 2) continue;
    EXPECT_EQ(get(rsp, 8), get(c.req, 8)) << c.name;  // the type is echoed
    ASSERT_EQ(get(rsp, 12), 4 * c.value.size()) << c.name;
    for (size_t i = 0; i < c.value.size(); ++i)
      EXPECT_EQ(get(rsp, 16 + 4 * i), c.value[i]) << c.name;
  }
  // The card state is the modem's: it outlives the daemon.
  EXPECT_EQ(Settings::load(dir_).card_present[1], 0u);
}

TEST_F(ModemRecordsTest, RestartAndDumpAreReportedToTheTransport) {
  struct Case {
    uint32_t value;
    AfterReply after;
  };
  for (const Case &c : {Case{0x1000, AfterReply::kRestart}, Case{0x2000, AfterReply::kFullDump}}) {
    Outcome out;
    Record rsp = modem_->common_request(common(31, {c.value}).data(), out);
    EXPECT_EQ(get(rsp, 4), 0u);
    EXPECT_EQ(out.after, c.after);
  }
}

TEST_F(ModemRecordsTest, RfTestsAreKeptInTheirEfsFiles) {
  Record gpio(512, 0);
  put(gpio, 8, 3, 4);
  put(gpio, 12, 7, 4);
  put(gpio, 16, 8, 4);
  put(gpio, 20, 9, 4);
  EXPECT_EQ(get(cmn(gpio), 4), 0u);
  std::string file;
  ASSERT_EQ(modem_->store().efs_read(0, "/nv/item_files/modem/velmar/rf_ant_port_config", &file),
            0);
  EXPECT_EQ(file, std::string("\3\0\0\0\7\0\0\0\x08\0\0\0\x09\0\0\0", 16));

  Record tx(512, 0);
  put(tx, 0, 1, 4);
  put(tx, 8, 1, 4);
  put(tx, 12, 4, 4);
  put(tx, 16, 0x100000000003ull, 8);
  EXPECT_EQ(get(cmn(tx), 4), 0u);
  ASSERT_EQ(modem_->store().efs_read(0, "/nv/item_files/modem/antenna/ant_tx_config", &file), 0);
  EXPECT_EQ(file, std::string("\1\0\0\0\4\0\0\0\3\0\0\0\0\x10\0\0", 16));
  put(tx, 12, 5, 4);  // no sixth system
  EXPECT_EQ(get(cmn(tx), 4), kQmiErrInvalidArg);
}

TEST_F(ModemRecordsTest, StatsDebugInformationLayout) {
  Record req(512, 0);
  put(req, 0, 20, 4);
  modem_->settings().set("stats.uim.listener_event_parse_num", 0x01020304);
  Record rsp = cmn(req);
  EXPECT_EQ(get(rsp, 4), 0u);
  EXPECT_EQ(rsp[8], 1);   // version
  EXPECT_EQ(rsp[9], 1);   // feature enabled
  EXPECT_EQ(rsp[18], 1);  // the ok count (bytes 18..25) counts this query
  // The uim section's last field ends the record: 9 + 25 + 43 + 58 + 10 bytes.
  EXPECT_EQ(get(rsp, 9 + 25 + 43 + 58 + 6), 0x01020304u);
  EXPECT_EQ(rsp[9 + 136], 0);
}

TEST_F(ModemRecordsTest, EnvelopeLevelAnswers) {
  auto *svc = velmar_extend_qmi_get_service_object_v01();
  struct Case {
    const char *name;
    uint16_t msg_id;
    uint32_t request_id;
    uint8_t data_valid;
    uint32_t result;
  };
  const Case cases[] = {
      {"unknown request id", 0x0002, 3, 1, kQmiErrNotSupported},
      {"no data", 0x0002, 2, 0, kQmiErrMissingArg},
      {"the other message", 0x0003, 2, 1, kQmiErrNotSupported},
      {"an NV read", 0x0002, 2, 1, 0},
  };
  for (const Case &c : cases) {
    velmar_extend_qmi_msg_v01 req{};
    req.request_id = c.request_id;
    req.data_valid = c.data_valid;
    req.data_len = 512;
    req.data[0] = 1;  // NV read of item 0
    uint8_t wire[600];
    uint32_t len = 0;
    ASSERT_EQ(rpk_qmi::encode_message(svc, QMI_IDL_REQUEST, c.msg_id, &req, sizeof req, wire,
                                      sizeof wire, &len),
              0);
    Faults none;
    Outcome out = modem_->handle(kExtendQmiServiceId, c.msg_id, wire, len, none);
    velmar_extend_qmi_msg_v01 resp{};
    ASSERT_EQ(rpk_qmi::decode_message(svc, QMI_IDL_RESPONSE, c.msg_id, out.tlvs.data(),
                                      static_cast<uint32_t>(out.tlvs.size()), &resp, sizeof resp),
              0)
        << c.name;
    EXPECT_EQ(resp.request_id, c.result) << c.name;
    EXPECT_EQ(out.journal["envelope"]["request_id"], c.request_id) << c.name;
  }
}

TEST_F(ModemRecordsTest, QcnBackupAndRestore) {
  Store &store = modem_->store();
  ASSERT_EQ(store.qcn_restore(false), kNvFail);  // no backup yet
  ASSERT_EQ(store.nv_write(0, 6858, "changed"), kNvDone);
  ASSERT_EQ(store.qcn_backup(true), kNvDone);
  ASSERT_EQ(store.nv_write(0, 6858, "later"), kNvDone);
  ASSERT_EQ(store.nv_write(0, 550, std::string(9, '\x11')), kNvDone);
  ASSERT_EQ(store.qcn_restore(false), kNvDone);
  std::string v;
  store.nv_read(0, 6858, &v);
  EXPECT_EQ(v, "changed");
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

}  // namespace
}  // namespace rpk_sim
