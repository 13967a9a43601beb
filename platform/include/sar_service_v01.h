// Platform SAR QMI service (service 0x11), the part the tool uses.
#pragma once

#include <stdint.h>

#include "qmi_idl_lib.h"

#ifdef __cplusplus
extern "C" {
#endif

#define QMI_SAR_RF_GET_STATE_REQ_MSG_V01 0x0002
#define QMI_SAR_RF_GET_STATE_RESP_MSG_V01 0x0002

// Standard QMI response pair; each value travels as u16 on the wire.
typedef struct {
  int32_t result;  // 0 success, 1 failure
  int32_t error;   // QMI error code
} qmi_response_type_v01;

typedef struct {
  qmi_response_type_v01 resp;  // TLV 0x02
  uint8_t sar_rf_state_valid;  // TLV 0x10 present
  uint32_t sar_rf_state;       // DSI index
} sar_rf_get_state_resp_msg_v01;

qmi_idl_service_object_type sar_get_service_object_internal_v01(int32_t idl_maj_version,
                                                                int32_t idl_min_version,
                                                                int32_t library_version);

#ifdef __cplusplus
}
#endif
