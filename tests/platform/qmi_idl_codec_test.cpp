// The table-driven QMI codec on the two tables the system has: the Extend-QMI
// request's exact wire bytes and each decoding and encoding error, and the SAR
// response's aggregate result. Every end-to-end case decodes an Extend-QMI
// answer, with and without its data.
#include "platform/host/qcci/qmi_idl_codec.h"

#include <gtest/gtest.h>
#include <sar_service_v01.h>

#include <cstring>
#include <vector>

#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace {

using Bytes = std::vector<uint8_t>;

qmi_idl_service_object_type extend() { return velmar_extend_qmi_get_service_object_v01(); }

// Sized up front: GCC 12 at -O3 mistakes an insert after an initializer-list
// construction for an out-of-bounds copy.
Bytes tlv(uint8_t type, const Bytes &value) {
  Bytes out(3 + value.size());
  out[0] = type;
  out[1] = static_cast<uint8_t>(value.size());
  out[2] = static_cast<uint8_t>(value.size() >> 8);
  std::copy(value.begin(), value.end(), out.begin() + 3);
  return out;
}

Bytes cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const auto &p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

int decode_envelope(const Bytes &tlvs, velmar_extend_qmi_msg_v01 *m, uint32_t c_len = 524,
                    uint16_t msg_id = 0x0002) {
  return rpk_qmi::decode_message(extend(), QMI_IDL_RESPONSE, msg_id, tlvs.data(),
                                 static_cast<uint32_t>(tlvs.size()), m, c_len);
}

TEST(QmiIdlCodec, ExtendQmiRequestIsThreeTlvsWithAFixed512ByteArray) {
  velmar_extend_qmi_msg_v01 m{};
  m.request_id = 2;
  m.data_len = 3;  // the array travels whole, whatever data_len says
  m.data_valid = 1;
  for (int i = 0; i < 512; ++i) m.data[i] = static_cast<uint8_t>(i * 7);
  Bytes wire(1024);
  uint32_t len = 0;
  ASSERT_EQ(rpk_qmi::encode_message(extend(), QMI_IDL_REQUEST, 0x0002, &m, sizeof m, wire.data(),
                                    1024, &len),
            0);
  ASSERT_EQ(len, 529u);
  const Bytes head = {0x01, 0x04, 0x00, 0x02, 0x00, 0x00, 0x00,  // TLV 0x01 request_id
                      0x02, 0x04, 0x00, 0x03, 0x00, 0x00, 0x00,  // TLV 0x02 data_len
                      0x10, 0x00, 0x02};                         // TLV 0x10, 512 bytes
  EXPECT_EQ(Bytes(wire.begin(), wire.begin() + 17), head);
  EXPECT_EQ(0, memcmp(wire.data() + 17, m.data, 512));
}

TEST(QmiIdlCodec, DecodingErrors) {
  const Bytes id = tlv(0x01, {2, 0, 0, 0});
  const Bytes len = tlv(0x02, {0, 2, 0, 0});
  const Bytes data = tlv(0x10, Bytes(512, 0x11));
  struct Case {
    const char *name;
    Bytes wire;
    int expected;
    uint32_t c_len = 524;
    uint16_t msg_id = 0x0002;
  };
  const Case cases[] = {
      {"any order", cat({data, len, id}), 0},
      {"unknown optional TLV skipped", cat({id, tlv(0x22, {1, 2, 3}), len}), 0},
      {"unknown mandatory TLV", cat({id, len, tlv(0x03, {0})}), QMI_IDL_LIB_UNKNOWN_MANDATORY_TLV},
      {"duplicate TLV", cat({id, len, id}), QMI_IDL_LIB_TLV_DUPLICATED},
      {"missing mandatory TLV", cat({id, data}), QMI_IDL_LIB_MISSING_TLV},
      {"scalar too short", cat({tlv(0x01, {2, 0, 0}), len}), QMI_IDL_LIB_LENGTH_INCONSISTENCY},
      {"scalar too long", cat({tlv(0x01, {2, 0, 0, 0, 0}), len}), QMI_IDL_LIB_LENGTH_INCONSISTENCY},
      {"fixed array short", cat({id, len, tlv(0x10, Bytes(511, 0))}),
       QMI_IDL_LIB_LENGTH_INCONSISTENCY},
      {"fixed array long", cat({id, len, tlv(0x10, Bytes(513, 0))}),
       QMI_IDL_LIB_LENGTH_INCONSISTENCY},
      {"truncated TLV header", cat({id, len, Bytes{0x10, 0x00}}), QMI_IDL_LIB_LENGTH_INCONSISTENCY},
      {"length past the end", cat({id, len, Bytes{0x10, 0x00, 0x02, 0x00}}),
       QMI_IDL_LIB_LENGTH_INCONSISTENCY},
      {"struct too small", cat({id, len}), QMI_IDL_LIB_BUFFER_TOO_SMALL, 523},
      {"unknown message", cat({id, len}), QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND, 524, 0x0004},
  };
  for (const Case &c : cases) {
    velmar_extend_qmi_msg_v01 m{};
    EXPECT_EQ(decode_envelope(c.wire, &m, c.c_len, c.msg_id), c.expected) << c.name;
  }
}

TEST(QmiIdlCodec, EncodingErrors) {
  velmar_extend_qmi_msg_v01 m{};
  m.data_valid = 1;
  Bytes out(600);
  uint32_t len = 0;
  auto encode = [&](qmi_idl_type_of_message_type kind, uint16_t id, const void *c, uint32_t room) {
    return rpk_qmi::encode_message(extend(), kind, id, c, c ? sizeof m : 0, out.data(), room, &len);
  };
  EXPECT_EQ(encode(QMI_IDL_REQUEST, 0x0005, &m, 600), QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND);
  EXPECT_EQ(encode(QMI_IDL_REQUEST, 0x0002, &m, 528), QMI_IDL_LIB_BUFFER_TOO_SMALL);
  EXPECT_EQ(encode(QMI_IDL_REQUEST, 0x0002, nullptr, 600), QMI_IDL_LIB_PARAMETER_ERROR);
  EXPECT_EQ(encode(QMI_IDL_INDICATION, 0x0002, &m, 600), QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND);
}

TEST(QmiIdlCodec, SarResponseCarriesTheStandardResultAsTwoU16) {
  auto *sar = sar_get_service_object_internal_v01(1, 12, 6);
  ASSERT_NE(sar, nullptr);
  EXPECT_EQ(sar_get_service_object_internal_v01(2, 12, 6), nullptr);
  sar_rf_get_state_resp_msg_v01 resp{};
  resp.resp.result = 1;
  resp.resp.error = 0x5E;
  resp.sar_rf_state_valid = 1;
  resp.sar_rf_state = 0x01020304;
  Bytes out(64);
  uint32_t len = 0;
  ASSERT_EQ(rpk_qmi::encode_message(sar, QMI_IDL_RESPONSE, 0x0002, &resp, sizeof resp, out.data(),
                                    64, &len),
            0);
  out.resize(len);
  EXPECT_EQ(out, cat({tlv(0x02, {1, 0, 0x5E, 0}), tlv(0x10, {4, 3, 2, 1})}));
  sar_rf_get_state_resp_msg_v01 back{};
  ASSERT_EQ(
      rpk_qmi::decode_message(sar, QMI_IDL_RESPONSE, 0x0002, out.data(), len, &back, sizeof back),
      0);
  EXPECT_EQ(0, memcmp(&resp, &back, sizeof resp));
  // The request carries nothing.
  EXPECT_EQ(rpk_qmi::encode_message(sar, QMI_IDL_REQUEST, 0x0002, nullptr, 0, out.data(), 64, &len),
            0);
  EXPECT_EQ(len, 0u);
}

}  // namespace
