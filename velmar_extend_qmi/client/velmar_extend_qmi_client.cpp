#include "velmar_extend_qmi/client/velmar_extend_qmi_client.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "common/velmar_status.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace {

// Room for the service list; only the first entry is ever used.
constexpr unsigned kServiceInfoMax = 8;
// Indication numbers below this one are known (none has a handler yet).
constexpr uint32_t kKnownIndications = 7;

// The session. Cleared once on first use; the envelopes are reused by every
// request and cleared before each.
struct session_state {
  qmi_idl_service_object_type service_object;
  qmi_client_type handle;  // null until qmi_client_init succeeded
  bool client_inited;
  qmi_client_os_params notifier_os_params;  // signalled when the service appears
  velmar_extend_qmi_msg_v01 req;
  velmar_extend_qmi_msg_v01 resp;
};

// Statically initialised (constexpr constructor), so it is usable before
// main and from any thread. Guards g_state and every platform call on it.
std::mutex g_mutex;
session_state g_state;
std::once_flag g_initialised;

void first_use_init() {
  std::call_once(g_initialised, [] {
    g_state = session_state{};
    std::lock_guard lock(g_mutex);
    g_state.service_object = velmar_extend_qmi_get_service_object_v01();
  });
}

qmi_client_type client_open_nolock() {
  if (g_state.handle != nullptr) return g_state.handle;

  qmi_service_info info[kServiceInfoMax] = {};
  unsigned int num_entries = 0;
  unsigned int num_services = 0;
  // The notifier is never released: the session lives as long as the process.
  qmi_client_type notifier = nullptr;
  qmi_client_notifier_init(g_state.service_object, &g_state.notifier_os_params, &notifier);

  // No retry limit: a test tool without its service has nothing else to do.
  int rc = QMI_NO_ERR;
  for (;;) {
    rc = qmi_client_get_service_list(g_state.service_object, nullptr, nullptr, &num_services);
    printf("VELMAR_QMI_NV: qmi_client_get_service_list() returned %d num_services = %d\n", rc,
           num_services);
    if (rc == QMI_NO_ERR) break;
    qmi_cci_os_signal_wait(&g_state.notifier_os_params, 0);
  }

  num_entries = std::min(num_services, kServiceInfoMax);
  rc = qmi_client_get_service_list(g_state.service_object, info, &num_entries, &num_services);
  printf(
      "VELMAR_QMI_NV: qmi_client_get_service_list() returned %d num_entries = %d "
      "num_services = %d\n",
      rc, num_entries, num_services);

  qmi_client_type handle = nullptr;
  rc = qmi_client_init(&info[0], g_state.service_object, velmar_extend_qmi_ind_cb, nullptr, nullptr,
                       &handle);
  if (rc != QMI_NO_ERR) {
    printf("%d QMI client init failed\n", rc);
    return nullptr;
  }
  puts("QMI client inited");
  g_state.handle = handle;
  g_state.client_inited = true;
  return handle;
}

int32_t report(int32_t result) {
  printf("velmar_extend_qmi_handle_req_cb result:%d\n", result);
  return result;
}

// One request on the shared envelopes. The caller holds g_mutex and has
// checked the arguments (len <= 512, *resp_len <= 512).
int32_t send_nolock(uint32_t request_id, const void *req_data, uint32_t req_len, void *resp_buf,
                    uint32_t *resp_len, uint32_t timeout_ms) {
  if (g_state.handle == nullptr && client_open_nolock() == nullptr) {
    return report(VELMAR_ERR_QMI_NO_CLIENT);
  }

  velmar_extend_qmi_msg_v01 &req = g_state.req;
  velmar_extend_qmi_msg_v01 &resp = g_state.resp;
  req = {};
  resp = {};
  req.request_id = request_id;
  memcpy(req.data, req_data, req_len);
  req.data_len = req_len;
  req.data_valid = 1;

  const int rc = qmi_client_send_msg_sync(g_state.handle, VELMAR_EXTEND_QMI_MSG_ID, &req,
                                          sizeof req, &resp, sizeof resp, timeout_ms);
  if (rc != QMI_NO_ERR) {
    printf("send msg sync failed:%d\n", rc);
    return report(VELMAR_ERR_QMI_SEND);
  }
  // In a response the first word is the service's result.
  if (resp.request_id != 0) {
    printf("%d QMI service framework error. Check client\n", static_cast<int>(resp.request_id));
    return report(VELMAR_ERR_QMI_SEND);
  }

  uint32_t copied = std::min(*resp_len, resp.data_len);
  if (resp.data_valid != 0) {
    memcpy(resp_buf, resp.data, copied);
  } else {
    copied = 0;
  }
  *resp_len = copied;
  printf("velmar_extend_qmi_send_sync resp_len:%d\n", copied);
  return report(VELMAR_OK);
}

bool invalid_pointers(const void *req_data, const void *resp_buf, const uint32_t *resp_len) {
  if (req_data != nullptr && resp_buf != nullptr && resp_len != nullptr) return false;
  printf("%x,  put Invalid param\n", static_cast<unsigned>(reinterpret_cast<uintptr_t>(req_data)));
  return true;
}

}  // namespace

qmi_client_type velmar_extend_qmi_client_open() {
  first_use_init();
  std::lock_guard lock(g_mutex);
  return client_open_nolock();
}

int32_t velmar_extend_qmi_send_sync(uint32_t request_id, const void *req_data, int32_t req_len,
                                    void *resp_buf, uint32_t *resp_len) {
  first_use_init();
  if (invalid_pointers(req_data, resp_buf, resp_len)) return VELMAR_ERR_QMI_PARAM;
  if (req_len < 0 || req_len > static_cast<int32_t>(VELMAR_EXTEND_QMI_DATA_MAX) ||
      *resp_len > VELMAR_EXTEND_QMI_DATA_MAX) {
    printf("put data_len %d > max %d\n", req_len, VELMAR_EXTEND_QMI_DATA_MAX);
    return VELMAR_ERR_QMI_PARAM;
  }
  std::lock_guard lock(g_mutex);
  return send_nolock(request_id, req_data, static_cast<uint32_t>(req_len), resp_buf, resp_len,
                     VELMAR_EXTEND_QMI_TIMEOUT_MS);
}

int32_t velmar_extend_qmi_send_sync_long_process(const void *req_data, void *resp_buf,
                                                 uint32_t *resp_len, uint32_t timeout_ms) {
  first_use_init();
  if (invalid_pointers(req_data, resp_buf, resp_len)) return VELMAR_ERR_QMI_PARAM;
  if (*resp_len > VELMAR_EXTEND_QMI_DATA_MAX) {
    printf("put data_len %d > max %d\n", VELMAR_EXTEND_QMI_LONG_REQ_LEN,
           VELMAR_EXTEND_QMI_DATA_MAX);
    return VELMAR_ERR_QMI_PARAM;
  }
  std::lock_guard lock(g_mutex);
  return send_nolock(VELMAR_REQUEST_ID_NV, req_data, VELMAR_EXTEND_QMI_LONG_REQ_LEN, resp_buf,
                     resp_len, timeout_ms);
}

// Runs on the QMI library's thread: takes no lock and decodes into its own
// envelope, never the session's.
void velmar_extend_qmi_ind_cb(qmi_client_type handle, unsigned int msg_id, void *ind_buf,
                              unsigned int ind_buf_len, void * /*cb_data*/) {
  printf("VELMAR__EXTEND_QMI: Indication msg_id=0x%x buf_len=%d \n", msg_id, ind_buf_len);
  velmar_extend_qmi_msg_v01 ind{};
  // A failed decode leaves the envelope zero: indication 0, reported below.
  (void)qmi_client_message_decode(handle, QMI_IDL_INDICATION, msg_id, ind_buf, ind_buf_len, &ind,
                                  sizeof ind);
  if (ind.request_id < kKnownIndications) {
    printf("No function defined to handle indication: %d", static_cast<int>(ind.request_id));
  } else {
    printf("Indicaion: %d greater than maximum known indication.",
           static_cast<int>(ind.request_id));
  }
}
