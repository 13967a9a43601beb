#include "support/fake_qmi_service.h"

#include <qmi_client.h>

#include <cassert>

namespace {

fake_qmi_service *g_active = nullptr;  // the unit tests run on one thread
char g_handle_storage;                 // only its address is used

}  // namespace

struct fake_qmi_access {
  static qmi_client_error_type send(fake_qmi_service &fake, void *req, void *resp,
                                    unsigned timeout_ms) {
    fake.requests_.push_back({*static_cast<velmar_extend_qmi_msg_v01 *>(req), timeout_ms});
    if (timeout_ms != 0 && fake.answer_ms_ > timeout_ms) return QMI_TIMEOUT_ERR;
    auto &answer = *static_cast<velmar_extend_qmi_msg_v01 *>(resp);
    answer = {};
    answer.data_len = VELMAR_EXTEND_QMI_DATA_MAX;
    answer.data_valid = 1;
    return QMI_NO_ERR;
  }
};

fake_qmi_service::fake_qmi_service(uint32_t answer_ms) : answer_ms_(answer_ms) {
  assert(g_active == nullptr);
  g_active = this;
}

fake_qmi_service::~fake_qmi_service() { g_active = nullptr; }

extern "C" {

// The host framework's own functions, as the linker names them under --wrap.
decltype(qmi_client_notifier_init) __real_qmi_client_notifier_init;
decltype(qmi_client_get_service_list) __real_qmi_client_get_service_list;
decltype(qmi_client_init) __real_qmi_client_init;
decltype(qmi_client_send_msg_sync) __real_qmi_client_send_msg_sync;

qmi_client_error_type __wrap_qmi_client_notifier_init(qmi_idl_service_object_type service_obj,
                                                      qmi_client_os_params *os_params,
                                                      qmi_client_type *user_handle) {
  if (g_active == nullptr)
    return __real_qmi_client_notifier_init(service_obj, os_params, user_handle);
  *user_handle = nullptr;
  return QMI_NO_ERR;
}

qmi_client_error_type __wrap_qmi_client_get_service_list(qmi_idl_service_object_type service_obj,
                                                         qmi_service_info *service_info_array,
                                                         unsigned int *num_entries,
                                                         unsigned int *num_services) {
  if (g_active == nullptr) {
    return __real_qmi_client_get_service_list(service_obj, service_info_array, num_entries,
                                              num_services);
  }
  *num_services = 1;
  if (num_entries != nullptr) *num_entries = 1;
  return QMI_NO_ERR;
}

qmi_client_error_type __wrap_qmi_client_init(qmi_service_info *service_info,
                                             qmi_idl_service_object_type service_obj,
                                             qmi_client_ind_cb ind_cb, void *ind_cb_data,
                                             qmi_client_os_params *os_params,
                                             qmi_client_type *user_handle) {
  if (g_active == nullptr) {
    return __real_qmi_client_init(service_info, service_obj, ind_cb, ind_cb_data, os_params,
                                  user_handle);
  }
  *user_handle = reinterpret_cast<qmi_client_type>(&g_handle_storage);
  return QMI_NO_ERR;
}

qmi_client_error_type __wrap_qmi_client_send_msg_sync(qmi_client_type user_handle,
                                                      unsigned int msg_id, void *req_c_struct,
                                                      unsigned int req_c_struct_len,
                                                      void *resp_c_struct,
                                                      unsigned int resp_c_struct_len,
                                                      unsigned int timeout_msecs) {
  if (g_active == nullptr) {
    return __real_qmi_client_send_msg_sync(user_handle, msg_id, req_c_struct, req_c_struct_len,
                                           resp_c_struct, resp_c_struct_len, timeout_msecs);
  }
  return fake_qmi_access::send(*g_active, req_c_struct, resp_c_struct, timeout_msecs);
}

}  // extern "C"
