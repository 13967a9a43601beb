// The simulated modem's own description of the QMI messages it serves, written
// from the wire (TLV numbers, widths, presence) and never from the tool's
// service tables: a mistake in those tables makes the two sides disagree and
// shows up in every exchange instead of cancelling out.
//
// A TLV area is a run of TLVs: type u8, value length u16 little-endian, value.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace rpk_sim {

// The QMI IDL library's error codes, which the modem journals as the reason a
// request did not decode (the tool's host framework returns the same codes).
inline constexpr int kIdlMessageIdNotFound = -43;
inline constexpr int kIdlTlvDuplicated = -44;
inline constexpr int kIdlLengthInconsistency = -45;
inline constexpr int kIdlMissingTlv = -46;
inline constexpr int kIdlUnknownMandatoryTlv = -49;

// One TLV of a message: its type, the exact length of its value, and whether
// the message must carry it. Types 0x10 and above are optional extensions: an
// unknown one is skipped, an unknown one below 0x10 fails the decode.
struct TlvLayout {
  uint8_t type;
  uint16_t len;
  bool mandatory;
};

// The values of a decoded TLV area, by the index of their layout row (nullopt: the
// TLV was absent). The spans point into the decoded bytes.
using TlvValues = std::vector<std::optional<std::span<const uint8_t>>>;

// Decodes a TLV area against a message's TLVs; 0 or one of the codes above.
int decode_tlvs(std::span<const TlvLayout> layout, std::span<const uint8_t> area, TlvValues *out);

// Appends one TLV to an area.
void put_tlv(std::vector<uint8_t> &area, uint8_t type, std::span<const uint8_t> value);
void put_tlv_u32(std::vector<uint8_t> &area, uint8_t type, uint32_t value);

// --- Extend-QMI, service 0xFFE4 ---
inline constexpr uint16_t kExtendMsgRequest = 0x0002;  // the one request the modem carries out
inline constexpr uint16_t kExtendMsgOther = 0x0003;    // defined, answered "not supported"
inline constexpr uint16_t kExtendMsgIndication = 0x0003;
inline constexpr size_t kExtendDataMax = 512;

// Every Extend-QMI message (both requests, both responses, the indication) is
// the same envelope:
//   TLV 0x01  u32        request id / result (0 success) / indication number
//   TLV 0x02  u32        data_len: bytes of data that mean something
//   TLV 0x10  512 bytes  data, optional (present = data_valid); always the whole
//                        fixed array, with no count, whatever data_len says
inline constexpr uint8_t kExtendTlvWord = 0x01;
inline constexpr uint8_t kExtendTlvDataLen = 0x02;
inline constexpr uint8_t kExtendTlvData = 0x10;
inline constexpr TlvLayout kExtendEnvelope[] = {
    {kExtendTlvWord, 4, true},
    {kExtendTlvDataLen, 4, true},
    {kExtendTlvData, kExtendDataMax, false},
};

struct ExtendEnvelope {
  uint32_t word = 0;  // request id, result or indication number
  uint32_t data_len = 0;
  bool data_valid = false;
  std::array<uint8_t, kExtendDataMax> data{};
};

// Whether an Extend-QMI request message id exists at all (others do not
// decode: kIdlMessageIdNotFound).
bool extend_request_known(uint16_t msg_id);
int decode_extend(std::span<const uint8_t> area, ExtendEnvelope *out);
std::vector<uint8_t> encode_extend(const ExtendEnvelope &e);

// --- SAR, service 0x11 ---
// Message 0x0002 "RF get state": an empty request; the response carries
//   TLV 0x02  4 bytes    the standard response: u16 result, u16 error
//   TLV 0x10  u32        sar_rf_state, optional (present = sar_rf_state_valid)
inline constexpr uint16_t kSarMsgRfGetState = 0x0002;
inline constexpr uint8_t kSarTlvResult = 0x02;
inline constexpr uint8_t kSarTlvRfState = 0x10;

struct SarRfState {
  uint16_t result = 0;  // 0 success, 1 failure
  uint16_t error = 0;   // QMI error code when result is 1
  bool state_valid = false;
  uint32_t state = 0;
};

// Decodes a SAR request (0 or a code above; an unknown message id does not
// decode).
int decode_sar_request(uint16_t msg_id, std::span<const uint8_t> area);
std::vector<uint8_t> encode_sar_rf_state(const SarRfState &r);

}  // namespace rpk_sim
