// Table-driven QMI message codec: turns a message's C struct into TLVs and back
// by interpreting the element table of an IDL service object, the way the
// phone's IDL library does. Shared by the host QCCI library and the simulated
// modem, so both sides of a host exchange use one interpretation.
//
// Element table, one entry per TLV:
//   TLV flags   0x80 last TLV, 0x40 optional. Mandatory: low nibble = TLV type.
//               Optional: low nibble = distance from the field back to its
//               `_valid` byte, and the TLV type follows as its own byte.
//   elem flags  0x80 16-bit struct offset, 0x40 array, 0x20 array count is
//               16-bit, 0x10 variable length, low 3 bits = element type.
//   offset      1 byte (2 with 0x80), relative to the enclosing struct.
//   arrays      maximum count, 1 byte (2 with 0x20); a variable-length array
//               then names the struct offset of its u32 length field (1 or 2
//               bytes like the element offset) and carries its count on the
//               wire (1 byte, or 2 with 0x20) before the elements.
//   aggregate   (type 6) a referenced table index byte, then a type index
//               byte; the type's own data is a list of elements (no TLV
//               headers) ended by QMI_IDL_END_OF_TYPE.
// Wire: per TLV, type u8, length u16 LE, value; scalars little-endian.
#pragma once

#include <qmi_idl_lib.h>

#include <cstdint>

namespace rpk_qmi {

// Element types beyond the generic scalars of qmi_idl_lib.h.
inline constexpr uint8_t QMI_IDL_2_BYTE_ENUM = 5;  // int32 in the struct, u16 on the wire
inline constexpr uint8_t QMI_IDL_AGGREGATE = 6;    // a struct from a type table
inline constexpr uint8_t QMI_IDL_END_OF_TYPE = 0xFF;

struct MessageInfo {
  uint32_t c_struct_sz = 0;
  const uint8_t *elements = nullptr;  // null: the message carries no TLVs
  const qmi_idl_type_table_object *table = nullptr;
  uint16_t max_msg_len = 0;
};

// Finds msg_id among the messages of one kind. QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND
// when absent, QMI_IDL_LIB_PARAMETER_ERROR for a malformed service object.
int lookup_message(const qmi_idl_service_object *svc, qmi_idl_type_of_message_type kind,
                   uint16_t msg_id, MessageInfo *info);

// Encodes `c_struct` (c_len bytes, at least the message's C size) into TLVs.
// On success *out_len is the TLV area length; on failure `out` holds garbage.
int encode_message(const qmi_idl_service_object *svc, qmi_idl_type_of_message_type kind,
                   uint16_t msg_id, const void *c_struct, uint32_t c_len, uint8_t *out,
                   uint32_t out_cap, uint32_t *out_len);

// Decodes a TLV area into `c_struct`, which is zero-filled first (c_len must
// hold the message's C size). TLVs may come in any order; unknown TLVs of
// type 0x10 and above are skipped.
int decode_message(const qmi_idl_service_object *svc, qmi_idl_type_of_message_type kind,
                   uint16_t msg_id, const uint8_t *tlvs, uint32_t tlv_len, void *c_struct,
                   uint32_t c_len);

}  // namespace rpk_qmi
