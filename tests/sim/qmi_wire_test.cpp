// The simulated modem's own reading of the Extend-QMI and SAR wire: the
// request bytes the tool's framework must produce, and the refusals a
// malformed TLV area gets. (Its answers are read back by the product in every
// end-to-end case.)
#include "qmi_wire.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace rpk_sim {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes tlv(uint8_t type, Bytes value) {
  Bytes out;
  put_tlv(out, type, value);
  return out;
}

Bytes cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const auto &p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

const Bytes kWord = tlv(0x01, {2, 0, 0, 0});
const Bytes kLen = tlv(0x02, {9, 0, 0, 0});
const Bytes kData = tlv(0x10, Bytes(512, 0xAB));

TEST(ExtendWire, DecodesTheEnvelopeOrNamesTheFault) {
  struct Case {
    const char *what;
    Bytes area;
    int rc;
  };
  const Case cases[] = {
      {"whole request", cat({kWord, kLen, kData}), 0},
      {"any order", cat({kData, kLen, kWord}), 0},
      {"no data", cat({kWord, kLen}), 0},
      {"unknown extension skipped", cat({kWord, kLen, tlv(0x11, {1, 2})}), 0},
      {"unknown mandatory TLV", cat({kWord, kLen, tlv(0x03, {0, 0, 0, 0})}),
       kIdlUnknownMandatoryTlv},
      {"duplicate", cat({kWord, kWord, kLen}), kIdlTlvDuplicated},
      {"missing data_len", cat({kWord}), kIdlMissingTlv},
      {"short scalar", cat({tlv(0x01, {2, 0}), kLen}), kIdlLengthInconsistency},
      {"data with a count", cat({kWord, kLen, tlv(0x10, Bytes(511, 0))}), kIdlLengthInconsistency},
      {"TLV past the end", Bytes{0x01, 0x04, 0x00, 0x02}, kIdlLengthInconsistency},
      {"half a TLV header", cat({kWord, kLen, Bytes{0x10, 0x00}}), kIdlLengthInconsistency},
  };
  for (const auto &c : cases) {
    ExtendEnvelope e;
    EXPECT_EQ(decode_extend(c.area, &e), c.rc) << c.what;
    if (c.rc == 0 && c.area.size() > kWord.size() + kLen.size()) {
      EXPECT_EQ(e.word, 2u) << c.what;
      EXPECT_EQ(e.data_len, 9u) << c.what;
      EXPECT_EQ(e.data_valid, c.area.size() == 529) << c.what;
    }
  }
}

TEST(SarWire, DecodesOnlyTheRfStateRequest) {
  EXPECT_EQ(decode_sar_request(0x0002, {}), 0);
  EXPECT_EQ(decode_sar_request(0x0001, {}), kIdlMessageIdNotFound);
  EXPECT_EQ(decode_sar_request(0x0002, tlv(0x01, {0})), kIdlUnknownMandatoryTlv);
}

}  // namespace
}  // namespace rpk_sim
