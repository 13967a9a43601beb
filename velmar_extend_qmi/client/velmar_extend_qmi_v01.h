// The Extend-QMI service (0xFFE4): its IDL service object and the one message
// structure (the envelope) that every request, response and indication uses.
#pragma once

#include <qmi_idl_lib.h>

#include <cstddef>
#include <cstdint>

inline constexpr uint32_t VELMAR_EXTEND_QMI_SERVICE_ID = 0xFFE4;
inline constexpr uint16_t VELMAR_EXTEND_QMI_MSG_ID = 0x0002;  // the message the tool sends
inline constexpr uint16_t VELMAR_EXTEND_QMI_MSG_ID_2 =
    0x0003;  // bound, never sent; also the indication
inline constexpr uint32_t VELMAR_EXTEND_QMI_DATA_MAX = 512;
inline constexpr uint32_t VELMAR_EXTEND_QMI_MAX_MSG_LEN = 529;  // (3+4) + (3+4) + (3+512)

// Request ids (TLV 0x01 of a request).
inline constexpr uint32_t VELMAR_REQUEST_ID_NV = 1;      // NV store record (category 1)
inline constexpr uint32_t VELMAR_REQUEST_ID_EFS = 2;     // NV/EFS record
inline constexpr uint32_t VELMAR_REQUEST_ID_COMMON = 4;  // record selected by its first word

// The envelope, as the IDL library decodes it.
struct velmar_extend_qmi_msg_v01 {
  uint32_t request_id;  // TLV 0x01: request id; a response's result (0 ok); an indication's number
  uint32_t data_len;    // TLV 0x02: meaningful bytes in data
  uint8_t data_valid;   // TLV 0x10 present
  uint8_t data[VELMAR_EXTEND_QMI_DATA_MAX];  // TLV 0x10: the inner record
};
static_assert(sizeof(velmar_extend_qmi_msg_v01) == 524);
static_assert(offsetof(velmar_extend_qmi_msg_v01, data_len) == 4);
static_assert(offsetof(velmar_extend_qmi_msg_v01, data_valid) == 8);
static_assert(offsetof(velmar_extend_qmi_msg_v01, data) == 9);

// The service object handed to the QMI client framework (constant data).
qmi_idl_service_object_type velmar_extend_qmi_get_service_object_v01();
