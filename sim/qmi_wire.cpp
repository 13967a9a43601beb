#include "qmi_wire.h"

#include <algorithm>

#include "sim_text.h"

namespace rpk_sim {

int decode_tlvs(std::span<const TlvLayout> layout, std::span<const uint8_t> area, TlvValues *out) {
  out->assign(layout.size(), std::nullopt);
  size_t at = 0;
  while (at < area.size()) {
    if (area.size() - at < 3) return kIdlLengthInconsistency;
    const uint8_t type = area[at];
    const auto len = static_cast<size_t>(get_le(area.data() + at + 1, 2));
    at += 3;
    if (len > area.size() - at) return kIdlLengthInconsistency;
    const auto value = area.subspan(at, len);
    at += len;
    const auto it = std::find_if(layout.begin(), layout.end(),
                                 [type](const TlvLayout &t) { return t.type == type; });
    if (it == layout.end()) {
      if (type < 0x10) return kIdlUnknownMandatoryTlv;
      continue;
    }
    auto &slot = (*out)[static_cast<size_t>(it - layout.begin())];
    if (slot) return kIdlTlvDuplicated;
    if (len != it->len) return kIdlLengthInconsistency;
    slot = value;
  }
  for (size_t i = 0; i < layout.size(); ++i) {
    if (layout[i].mandatory && !(*out)[i]) return kIdlMissingTlv;
  }
  return 0;
}

void put_tlv(std::vector<uint8_t> &area, uint8_t type, std::span<const uint8_t> value) {
  area.push_back(type);
  area.push_back(static_cast<uint8_t>(value.size()));
  area.push_back(static_cast<uint8_t>(value.size() >> 8));
  area.insert(area.end(), value.begin(), value.end());
}

void put_tlv_u32(std::vector<uint8_t> &area, uint8_t type, uint32_t value) {
  uint8_t v[4];
  put_le(v, value, 4);
  put_tlv(area, type, v);
}

bool extend_request_known(uint16_t msg_id) {
  return msg_id == kExtendMsgRequest || msg_id == kExtendMsgOther;
}

int decode_extend(std::span<const uint8_t> area, ExtendEnvelope *out) {
  *out = ExtendEnvelope{};
  TlvValues v;
  const int rc = decode_tlvs(kExtendEnvelope, area, &v);
  if (rc != 0) return rc;
  out->word = static_cast<uint32_t>(get_le(v[0]->data(), 4));
  out->data_len = static_cast<uint32_t>(get_le(v[1]->data(), 4));
  if (v[2]) {
    out->data_valid = true;
    std::copy(v[2]->begin(), v[2]->end(), out->data.begin());
  }
  return 0;
}

std::vector<uint8_t> encode_extend(const ExtendEnvelope &e) {
  std::vector<uint8_t> area;
  put_tlv_u32(area, kExtendTlvWord, e.word);
  put_tlv_u32(area, kExtendTlvDataLen, e.data_len);
  if (e.data_valid) put_tlv(area, kExtendTlvData, e.data);
  return area;
}

int decode_sar_request(uint16_t msg_id, std::span<const uint8_t> area) {
  if (msg_id != kSarMsgRfGetState) return kIdlMessageIdNotFound;
  TlvValues v;
  return decode_tlvs({}, area, &v);
}

std::vector<uint8_t> encode_sar_rf_state(const SarRfState &r) {
  std::vector<uint8_t> area;
  uint8_t std_resp[4];
  put_le(std_resp, r.result, 2);
  put_le(std_resp + 2, r.error, 2);
  put_tlv(area, kSarTlvResult, std_resp);
  if (r.state_valid) put_tlv_u32(area, kSarTlvRfState, r.state);
  return area;
}

}  // namespace rpk_sim
