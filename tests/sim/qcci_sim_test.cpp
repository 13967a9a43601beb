// The host QMI client framework against the simulated modem: what a product
// client sees through the platform calls.
#include <qmi_client.h>
#include <sar_service_v01.h>

#include <atomic>
#include <cstring>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "sim_fixture.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace rpk_sim_test {
namespace {

qmi_client_type open_extend(qmi_client_ind_cb cb = nullptr, void *cb_data = nullptr) {
  qmi_idl_service_object_type svc = velmar_extend_qmi_get_service_object_v01();
  qmi_service_info info[4] = {};
  unsigned entries = 4, services = 0;
  if (qmi_client_get_service_list(svc, info, &entries, &services) != 0) return nullptr;
  qmi_client_type h = nullptr;
  if (qmi_client_init(&info[0], svc, cb, cb_data, nullptr, &h) != 0) return nullptr;
  return h;
}

// Sends one envelope with request id `id` and the record `data`.
int exchange(qmi_client_type h, uint32_t id, const std::vector<uint8_t> &data,
             velmar_extend_qmi_msg_v01 *resp, unsigned timeout_ms = 3000) {
  velmar_extend_qmi_msg_v01 req{};
  req.request_id = id;
  req.data_len = static_cast<uint32_t>(data.size());
  req.data_valid = 1;
  memcpy(req.data, data.data(), data.size());
  *resp = {};
  return qmi_client_send_msg_sync(h, VELMAR_EXTEND_QMI_MSG_ID, &req, sizeof req, resp, sizeof *resp,
                                  timeout_ms);
}

std::vector<uint8_t> nv_read_record(uint8_t sub, uint16_t item) {
  std::vector<uint8_t> rec(512, 0);
  rec[0] = 1;
  rec[1] = sub;
  rec[2] = static_cast<uint8_t>(item);
  rec[3] = static_cast<uint8_t>(item >> 8);
  return rec;
}

int32_t le32(const uint8_t *p) {
  return static_cast<int32_t>(p[0] | (p[1] << 8) | (p[2] << 16) |
                              (static_cast<uint32_t>(p[3]) << 24));
}

std::vector<nlohmann::json> parse_lines(const std::string &text) {
  std::vector<nlohmann::json> out;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) out.push_back(nlohmann::json::parse(line));
  return out;
}

using QcciSimTest = SimTest;

TEST_F(QcciSimTest, ReadsAnNvItemAndTheJournalShowsTheExactRequest) {
  start();
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  velmar_extend_qmi_msg_v01 resp;
  ASSERT_EQ(exchange(h, 2, nv_read_record(0, 550), &resp), QMI_NO_ERR);
  EXPECT_EQ(resp.request_id, 0u);
  EXPECT_EQ(resp.data_valid, 1);
  EXPECT_EQ(le32(resp.data + 16), 0);  // modem result
  EXPECT_EQ(le32(resp.data + 4), 9);   // IMEI item length
  EXPECT_EQ(resp.data[20], 0x08);
  qmi_client_release(h);

  auto lines = parse_lines(journal());
  ASSERT_EQ(lines.size(), 1u);
  const auto &e = lines[0];
  EXPECT_EQ(e["service"], "0xffe4");
  EXPECT_EQ(e["msg_id"], "0x0002");
  EXPECT_EQ(e["envelope"]["request_id"], 2);
  EXPECT_EQ(e["envelope"]["data_len"], 512);
  EXPECT_EQ(e["envelope"]["data"].get<std::string>().substr(0, 8), "01002602");
  EXPECT_EQ(e["wire"].get<std::string>().size(), 2u * 536);
}
}  // namespace
}  // namespace rpk_sim_test
