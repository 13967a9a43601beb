// QMI IDL service object types, as the platform's IDL compiler emits them.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
  QMI_IDL_REQUEST = 0,
  QMI_IDL_RESPONSE = 1,
  QMI_IDL_INDICATION = 2,
  QMI_IDL_NUM_MSG_TYPES = 3
} qmi_idl_type_of_message_type;

// Element-table encoding.
#define QMI_IDL_TLV_FLAGS_LAST_TLV 0x80
#define QMI_IDL_TLV_FLAGS_OPTIONAL 0x40
#define QMI_IDL_TLV_FLAGS_TYPE_MASK 0x0F
#define QMI_IDL_FLAGS_OFFSET_IS_16 0x80
#define QMI_IDL_FLAGS_IS_ARRAY 0x40
#define QMI_IDL_FLAGS_SZ_IS_16 0x20
#define QMI_IDL_FLAGS_IS_VARIABLE_LEN 0x10
#define QMI_IDL_FLAGS_TYPE_MASK 0x07
#define QMI_IDL_GENERIC_1_BYTE 0
#define QMI_IDL_GENERIC_2_BYTE 1
#define QMI_IDL_GENERIC_4_BYTE 2
#define QMI_IDL_GENERIC_8_BYTE 3

// IDL library error codes.
#define QMI_IDL_LIB_NO_ERR 0
#define QMI_IDL_LIB_BUFFER_TOO_SMALL (-41)
#define QMI_IDL_LIB_ARRAY_TOO_BIG (-42)
#define QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND (-43)
#define QMI_IDL_LIB_TLV_DUPLICATED (-44)
#define QMI_IDL_LIB_LENGTH_INCONSISTENCY (-45)
#define QMI_IDL_LIB_MISSING_TLV (-46)
#define QMI_IDL_LIB_PARAMETER_ERROR (-47)
#define QMI_IDL_LIB_UNRECOGNIZED_SERVICE_VERSION (-48)
#define QMI_IDL_LIB_UNKNOWN_MANDATORY_TLV (-49)

typedef struct {
  uint32_t c_struct_sz;
  const uint8_t *p_encoded_type_data;
} qmi_idl_message_table_entry;

typedef struct {
  uint32_t c_struct_sz;
  const uint8_t *p_encoded_type_data;
} qmi_idl_type_table_entry;

typedef struct {
  uint16_t qmi_message_id;
  uint16_t message_table_message_id;  // bits 12..15 table, bits 0..11 index
  uint16_t max_msg_len;
} qmi_idl_service_message_table_entry;

typedef struct qmi_idl_type_table_object qmi_idl_type_table_object;
struct qmi_idl_type_table_object {
  uint16_t n_types;
  uint16_t n_messages;
  uint8_t n_referenced_tables;
  const qmi_idl_type_table_entry *p_types;
  const qmi_idl_message_table_entry *p_messages;
  const qmi_idl_type_table_object **p_referenced_tables;
  const void *p_ranges;
};

struct qmi_idl_service_object {
  uint32_t library_version;
  uint32_t idl_version;
  uint32_t service_id;
  uint32_t max_msg_len;
  uint16_t n_msgs[QMI_IDL_NUM_MSG_TYPES];
  const qmi_idl_service_message_table_entry *msgid_to_msg[QMI_IDL_NUM_MSG_TYPES];
  const qmi_idl_type_table_object *p_type_table;
  uint32_t idl_minor_version;
  struct qmi_idl_service_object *parent_service_obj;
};

typedef struct qmi_idl_service_object *qmi_idl_service_object_type;

#ifdef __cplusplus
}
#endif
