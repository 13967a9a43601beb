#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

#include <array>

namespace {

// TLV 0x01 u32 at 0; TLV 0x02 u32 at 4; TLV 0x10 optional and last, its
// data_valid byte at 9 - 1, a fixed array of 512 bytes at 9.
constexpr uint8_t kEnvelopeElements[] = {
    0x01, 0x02, 0x00,                   //
    0x02, 0x02, 0x04,                   //
    0xC1, 0x10, 0x60, 0x09, 0x00, 0x02  //
};
static_assert(sizeof kEnvelopeElements == 12);

// All five message definitions share the envelope.
constexpr qmi_idl_message_table_entry kMessages[] = {
    {sizeof(velmar_extend_qmi_msg_v01), kEnvelopeElements},  // 0: request 0x0002
    {sizeof(velmar_extend_qmi_msg_v01), kEnvelopeElements},  // 1: response 0x0002
    {sizeof(velmar_extend_qmi_msg_v01), kEnvelopeElements},  // 2: request 0x0003
    {sizeof(velmar_extend_qmi_msg_v01), kEnvelopeElements},  // 3: response 0x0003
    {sizeof(velmar_extend_qmi_msg_v01), kEnvelopeElements},  // 4: indication 0x0003
};

extern const qmi_idl_type_table_object kTypeTable;
const qmi_idl_type_table_object *const kReferencedTables[] = {&kTypeTable};

constexpr qmi_idl_type_table_object kTypeTable = {
    0,                                                              // n_types
    static_cast<uint16_t>(sizeof kMessages / sizeof kMessages[0]),  // n_messages
    1,                                                              // n_referenced_tables
    nullptr,                                                        // p_types
    kMessages,
    const_cast<const qmi_idl_type_table_object **>(kReferencedTables),
    nullptr,  // p_ranges
};

// Sorted by message id: the framework searches them by binary search.
constexpr qmi_idl_service_message_table_entry kRequests[] = {
    {VELMAR_EXTEND_QMI_MSG_ID, 0, VELMAR_EXTEND_QMI_MAX_MSG_LEN},
    {VELMAR_EXTEND_QMI_MSG_ID_2, 2, VELMAR_EXTEND_QMI_MAX_MSG_LEN},
};
constexpr qmi_idl_service_message_table_entry kResponses[] = {
    {VELMAR_EXTEND_QMI_MSG_ID, 1, VELMAR_EXTEND_QMI_MAX_MSG_LEN},
    {VELMAR_EXTEND_QMI_MSG_ID_2, 3, VELMAR_EXTEND_QMI_MAX_MSG_LEN},
};
constexpr qmi_idl_service_message_table_entry kIndications[] = {
    {VELMAR_EXTEND_QMI_MSG_ID_2, 4, VELMAR_EXTEND_QMI_MAX_MSG_LEN},
};

qmi_idl_service_object g_velmar_extend_qmi_service_object = {
    6,  // IDL library version
    1,  // IDL version
    VELMAR_EXTEND_QMI_SERVICE_ID,
    VELMAR_EXTEND_QMI_MAX_MSG_LEN,
    {2, 2, 1},
    {kRequests, kResponses, kIndications},
    &kTypeTable,
    1,        // IDL minor version
    nullptr,  // no parent service
};

}  // namespace

qmi_idl_service_object_type velmar_extend_qmi_get_service_object_v01() {
  return &g_velmar_extend_qmi_service_object;
}
