// The corrupt fault: its control form and what it does to an answer packet.
#include "faults.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/host/link/qmi_host_transport.h"

namespace rpk_sim {
namespace {

using Bytes = std::vector<uint8_t>;

// A response header (txn 1, message 2) and a TLV area of `len` bytes 0xAA.
Bytes answer(uint16_t len) {
  Bytes p(rpk_qmi::kHeaderLen + len, 0xAA);
  rpk_qmi::put_header(p.data(), {rpk_qmi::kCtlResponse, 1, 2, len});
  return p;
}

Corruption parsed(const nlohmann::json &j) {
  Fault f;
  std::string error;
  EXPECT_TRUE(parse_fault(j, &f, &error)) << error;
  return f.corrupt;
}

TEST(CorruptFault, DamagesTheAnswerInOrder) {
  Bytes p = answer(20);
  // Cut to 10 bytes of TLVs, another message and transaction, then a patch
  // that runs past the end and over the (already rewritten) txn.
  parsed({{"kind", "corrupt"},
          {"truncate", 10u},
          {"msg_id", 3u},
          {"txn", 0x99u},
          {"patch", {{{"at", 1u}, {"hex", "07"}}, {{"at", 15u}, {"hex", "01 02 03 04"}}}}})
      .apply(p);
  ASSERT_EQ(p.size(), rpk_qmi::kHeaderLen + 10);
  rpk_qmi::Header h;
  ASSERT_TRUE(rpk_qmi::parse_header(p.data(), p.size(), &h));
  EXPECT_EQ(h.msg_id, 3);
  EXPECT_EQ(h.txn, 0x07);
  EXPECT_EQ(p[15], 0x01);
  EXPECT_EQ(p[16], 0x02);

  // A cut longer than the answer changes nothing.
  Bytes q = answer(4);
  parsed({{"kind", "corrupt"}, {"truncate", 100u}}).apply(q);
  EXPECT_EQ(q, answer(4));
}

TEST(CorruptFault, RefusesWhatIsNotDamage) {
  const nlohmann::json refused[] = {
      {{"kind", "corrupt"}},
      {{"kind", "corrupt"}, {"msg_id", 0x10000u}},
      {{"kind", "corrupt"}, {"truncate", "x"}},
      {{"kind", "corrupt"}, {"patch", {{{"at", 1u}}}}},
      {{"kind", "corrupt"}, {"patch", {{{"at", 1u}, {"hex", "zz"}}}}},
  };
  for (const auto &j : refused) {
    Fault f;
    std::string error;
    EXPECT_FALSE(parse_fault(j, &f, &error)) << j.dump();
    EXPECT_NE(error.find("corrupt"), std::string::npos) << error;
  }
}

TEST(CorruptFault, MatchingFaultsAddUp) {
  Faults faults;
  Fault a, b;
  std::string error;
  ASSERT_TRUE(parse_fault({{"kind", "corrupt"}, {"claim", 425u}, {"count", 1u}}, &a, &error));
  ASSERT_TRUE(parse_fault({{"kind", "corrupt"}, {"txn", 5u}, {"request_id", 2u}}, &b, &error));
  faults.add(a);
  faults.add(b);
  const FaultEffect first = faults.on_request(0xFFE4, 2);
  EXPECT_EQ(first.corrupt.claim, 425u);
  EXPECT_EQ(first.corrupt.txn, 5);
  const FaultEffect second = faults.on_request(0xFFE4, 4);
  EXPECT_FALSE(second.corrupt.any());  // the count is used up, the request id differs
}

}  // namespace
}  // namespace rpk_sim
