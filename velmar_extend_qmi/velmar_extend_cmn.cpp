#include "velmar_extend_qmi/velmar_extend_cmn.h"

#include <sar_service_v01.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/velmar_console.h"
#include "common/velmar_log.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_client.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace {

// A common request of type t with l bytes of v (v may be null when l is 0).
velmar_cmn_record cmn_request(int32_t t, uint32_t l, const uint8_t *v) {
  velmar_cmn_record req{};
  req.kind = VELMAR_COMMON_KIND_CMN;
  req.t = static_cast<uint32_t>(t);
  velmar_cmn_copy_value(req, v, l);
  req.l = l;
  return req;
}

int32_t cmn_exchange(const velmar_cmn_record &req, velmar_cmn_record *rsp) {
  uint32_t room = VELMAR_CMN_RSP_ROOM;
  return velmar_extend_qmi_send_sync(VELMAR_REQUEST_ID_COMMON, &req, sizeof req, rsp, &room);
}

}  // namespace

void velmar_cmn_copy_value(velmar_cmn_record &rec, const uint8_t *src, uint32_t n) {
  if (n > sizeof rec.v) {
    fprintf(stderr,
            "rpk: common value of %u bytes does not fit the %zu-byte value area, aborting\n", n,
            sizeof rec.v);
    abort();
  }
  if (n != 0) memcpy(rec.v, src, n);
}

void velmar_send_common_qmi_msg(int32_t t, uint32_t l, const uint8_t *v, velmar_cmn_record *rsp) {
  VELMAR_LOG_LN("function entry ------------->");
  if (rsp == nullptr) {
    VELMAR_LOG_LN("rsp is NULL");
  } else {
    memset(rsp, 0, VELMAR_CMN_RSP_ROOM);
    VELMAR_LOG_LN("t %d", t);
    VELMAR_LOG_LN("l %d", l);
    if (l >= VELMAR_CMN_LEN_LIMIT) {
      VELMAR_LOG_LN("l is out of range");
    } else if (l != 0 && v == nullptr) {
      VELMAR_LOG_LN("v is null");
    } else {
      const velmar_cmn_record req = cmn_request(t, l, v);
      // Callers judge the answer by rsp->result and rsp->l, not by this code.
      (void)cmn_exchange(req, rsp);
    }
  }
  VELMAR_LOG_LN("function exit <-------------");
}

int32_t velmar_cmn_cmd_send(int32_t t, uint32_t l, const uint8_t *v) {
  printf("velmar_cmn_cmd_send, t: %d, l: %d\n", t, l);
  // Unlike velmar_send_common_qmi_msg, a bad value still sends the command.
  if (l >= VELMAR_CMN_LEN_LIMIT || v == nullptr) l = 0;
  const velmar_cmn_record req = cmn_request(t, l, v);

  velmar_cmn_record rsp{};
  const int32_t result = cmn_exchange(req, &rsp);
  printf("result = %d, rsp.result = %d\n", result, rsp.result);
  if (result != 0) {
    puts("velmar_extend_qmi_send_sync fail");
  } else if (rsp.result != 0) {
    puts("rsp.result fail");
  } else {
    // The echoed t and l words, then the value: l + 8 bytes from t on.
    const uint32_t shown = l + 8;
    printf("\ndata len(%d)\ndata:", shown);
    const auto *from = reinterpret_cast<const uint8_t *>(&rsp.t);
    velmar_print_hex_bytes(from, shown);
  }
  return result;
}

int32_t velmar_common_qmi_req(const void *req, int32_t req_len, void *rsp, uint32_t *rsp_len) {
  VELMAR_LOG_LN("function entry ------------->");
  const int32_t result =
      velmar_extend_qmi_send_sync(VELMAR_REQUEST_ID_COMMON, req, req_len, rsp, rsp_len);
  VELMAR_LOG_LN("function exit <-------------");
  return result;
}

void velmar_qcril_qmi_client_common_empty_unsol_ind_cb(qmi_client_type /*handle*/,
                                                       unsigned int msg_id, void * /*ind_buf*/,
                                                       unsigned int /*ind_buf_len*/,
                                                       void * /*cb_data*/) {
  VELMAR_LOG_LN("msg_id %d", static_cast<int>(msg_id));
}

namespace {

constexpr int32_t kCmnNvSync = 35;

// The SAR service object versions this tool was built against.
constexpr int32_t kSarIdlMajor = 1;
constexpr int32_t kSarIdlMinor = 12;
constexpr int32_t kSarToolVersion = 6;
constexpr uint32_t kSarInitTimeoutMs = 4;
constexpr unsigned kSarSendTimeoutMs = 30000;

// The SAR client is opened once and kept for the rest of the process.
qmi_client_os_params g_sar_os_params;
qmi_client_type g_sar_client = nullptr;

}  // namespace

void velmar_cmn_test_nv_sync() {
  puts("Will trigger NV SYNC");
  velmar_cmn_record rsp;
  velmar_send_common_qmi_msg(kCmnNvSync, 0, nullptr, &rsp);
}

void velmar_cmn_test_get_sar_dsi() {
  static constexpr char fn[] = "velmar_get_sar_dsi";
  VELMAR_LOGF_LN(fn, "function entry ------------->");
  int32_t dsi = -1;
  qmi_idl_service_object_type service =
      sar_get_service_object_internal_v01(kSarIdlMajor, kSarIdlMinor, kSarToolVersion);
  int rc = qmi_client_init_instance(service, QMI_CLIENT_INSTANCE_ANY,
                                    velmar_qcril_qmi_client_common_empty_unsol_ind_cb, nullptr,
                                    &g_sar_os_params, kSarInitTimeoutMs, &g_sar_client);
  if (rc != QMI_NO_ERR) {
    VELMAR_LOGF_LN(fn, "qmi_client_init_instance failed, qmi_client_error = %d", rc);
  } else {
    sar_rf_get_state_resp_msg_v01 rsp{};
    rc = qmi_client_send_msg_sync(g_sar_client, QMI_SAR_RF_GET_STATE_REQ_MSG_V01, nullptr, 0, &rsp,
                                  sizeof rsp, kSarSendTimeoutMs);
    if (rc != QMI_NO_ERR) {
      VELMAR_LOGF_LN(fn, "qmi_client_send_msg_sync failed, qmi_client_error = %d", rc);
    } else {
      // The answer's own result is not looked at: the state word is reported
      // as the service left it, valid or not.
      dsi = static_cast<int32_t>(rsp.sar_rf_state);
      VELMAR_LOGF_LN(fn, "dsi vailid = %d , dsi value = %d", rsp.sar_rf_state_valid, dsi);
    }
  }
  VELMAR_LOGF_LN(fn, "function exit <-------------");
  printf("SAR DSI: %d\n", dsi);
}
