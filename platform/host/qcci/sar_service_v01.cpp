// The platform SAR service object (service 0x11), the one message rpk uses:
// 0x0002 "RF get state". Constant data in the IDL encoding that
// qmi_idl_codec.h describes.
#include <sar_service_v01.h>

#include <cstddef>

#include "platform/host/qcci/qmi_idl_codec.h"

namespace {

constexpr uint32_t kSarServiceId = 0x11;
constexpr int32_t kIdlMajor = 1;
constexpr int32_t kIdlMinor = 12;
constexpr int32_t kIdlTool = 6;

static_assert(sizeof(sar_rf_get_state_resp_msg_v01) == 16);
static_assert(offsetof(sar_rf_get_state_resp_msg_v01, sar_rf_state_valid) == 8);
static_assert(offsetof(sar_rf_get_state_resp_msg_v01, sar_rf_state) == 12);

// qmi_response_type_v01: result and error, each an int32 travelling as u16.
constexpr uint8_t kResponseType[] = {
    rpk_qmi::QMI_IDL_2_BYTE_ENUM, 0x00,  //
    rpk_qmi::QMI_IDL_2_BYTE_ENUM, 0x04,  //
    rpk_qmi::QMI_IDL_END_OF_TYPE,
};

// TLV 0x02 the standard response (aggregate, table 0 type 0) at 0; TLV 0x10
// optional and last, its valid byte at 12 - 4, a u32 at 12.
constexpr uint8_t kRfGetStateResp[] = {
    0x02,
    rpk_qmi::QMI_IDL_AGGREGATE,
    0x00,
    0x00,
    0x00,  //
    0xC4,
    0x10,
    QMI_IDL_GENERIC_4_BYTE,
    0x0C,  //
};

constexpr qmi_idl_type_table_entry kTypes[] = {
    {sizeof(qmi_response_type_v01), kResponseType},
};

constexpr qmi_idl_message_table_entry kMessages[] = {
    {0, nullptr},                                              // 0: request, no TLVs
    {sizeof(sar_rf_get_state_resp_msg_v01), kRfGetStateResp},  // 1: response
};

extern const qmi_idl_type_table_object kTypeTable;
const qmi_idl_type_table_object *const kReferencedTables[] = {&kTypeTable};

constexpr qmi_idl_type_table_object kTypeTable = {
    1,  // n_types
    2,  // n_messages
    1,  // n_referenced_tables
    kTypes, kMessages, const_cast<const qmi_idl_type_table_object **>(kReferencedTables), nullptr,
};

// Maximum lengths: the response is (3 + 4) + (3 + 4).
constexpr qmi_idl_service_message_table_entry kRequests[] = {
    {QMI_SAR_RF_GET_STATE_REQ_MSG_V01, 0, 0},
};
constexpr qmi_idl_service_message_table_entry kResponses[] = {
    {QMI_SAR_RF_GET_STATE_RESP_MSG_V01, 1, 14},
};

qmi_idl_service_object g_sar_service_object = {
    static_cast<uint32_t>(kIdlTool),
    static_cast<uint32_t>(kIdlMajor),
    kSarServiceId,
    14,
    {1, 1, 0},
    {kRequests, kResponses, nullptr},
    &kTypeTable,
    static_cast<uint32_t>(kIdlMinor),
    nullptr,
};

}  // namespace

extern "C" qmi_idl_service_object_type sar_get_service_object_internal_v01(
    int32_t idl_maj_version, int32_t idl_min_version, int32_t library_version) {
  // An older minor version is a subset of this one; anything else is refused
  // the way the generated accessor refuses it.
  if (idl_maj_version != kIdlMajor || idl_min_version > kIdlMinor || library_version != kIdlTool) {
    return nullptr;
  }
  return &g_sar_service_object;
}
