// QMI client framework (QCCI).
#pragma once

#include <stdint.h>

#include "qmi_cci_target_ext.h"
#include "qmi_idl_lib.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct qmi_client_struct *qmi_client_type;
typedef int qmi_client_error_type;
typedef unsigned int qmi_service_instance;

typedef struct {
  unsigned int info[5];
} qmi_service_info;

#define QMI_CLIENT_INSTANCE_ANY 0xffff

#define QMI_NO_ERR 0
#define QMI_INTERNAL_ERR (-1)
#define QMI_SERVICE_ERR (-2)
#define QMI_TIMEOUT_ERR (-3)
#define QMI_EXTENDED_ERR (-4)
#define QMI_PORT_NOT_OPEN_ERR (-5)
#define QMI_MEMCOPY_ERROR (-13)
#define QMI_INVALID_TXN (-14)
#define QMI_CLIENT_ALLOC_FAILURE (-15)
#define QMI_CLIENT_TRANSPORT_ERR (-16)
#define QMI_CLIENT_PARAM_ERR (-17)
#define QMI_CLIENT_INVALID_CLNT (-18)
#define QMI_CLIENT_FW_NOT_UP (-19)

typedef void (*qmi_client_ind_cb)(qmi_client_type user_handle, unsigned int msg_id, void *ind_buf,
                                  unsigned int ind_buf_len, void *ind_cb_data);

qmi_client_error_type qmi_client_notifier_init(qmi_idl_service_object_type service_obj,
                                               qmi_client_os_params *os_params,
                                               qmi_client_type *user_handle);

qmi_client_error_type qmi_client_get_service_list(qmi_idl_service_object_type service_obj,
                                                  qmi_service_info *service_info_array,
                                                  unsigned int *num_entries,
                                                  unsigned int *num_services);

qmi_client_error_type qmi_client_init(qmi_service_info *service_info,
                                      qmi_idl_service_object_type service_obj,
                                      qmi_client_ind_cb ind_cb, void *ind_cb_data,
                                      qmi_client_os_params *os_params,
                                      qmi_client_type *user_handle);

qmi_client_error_type qmi_client_init_instance(qmi_idl_service_object_type service_obj,
                                               qmi_service_instance instance_id,
                                               qmi_client_ind_cb ind_cb, void *ind_cb_data,
                                               qmi_client_os_params *os_params, uint32_t timeout,
                                               qmi_client_type *user_handle);

qmi_client_error_type qmi_client_send_msg_sync(qmi_client_type user_handle, unsigned int msg_id,
                                               void *req_c_struct, unsigned int req_c_struct_len,
                                               void *resp_c_struct, unsigned int resp_c_struct_len,
                                               unsigned int timeout_msecs);

qmi_client_error_type qmi_client_message_decode(qmi_client_type user_handle,
                                                qmi_idl_type_of_message_type req_resp_ind,
                                                unsigned int message_id, const void *p_src,
                                                unsigned int src_len, void *p_dst,
                                                unsigned int dst_len);

qmi_client_error_type qmi_client_release(qmi_client_type user_handle);

#ifdef __cplusplus
}
#endif
