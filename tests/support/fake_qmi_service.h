// A stand-in for the modem's Extend-QMI service inside the unit tests, for
// what a real modem would make slow: the unit binary is linked with --wrap for
// the QMI calls the client session makes, and while a fake_qmi_service lives
// they come here instead of the host framework. The service is always there
// and answers every request `answer_ms` late with an empty success (a full
// data area of zeros); a request whose time limit is shorter times out, as
// the framework reports it. The client session opened against the fake stays
// open for the rest of the process, so only the fake can serve it afterwards.
#pragma once

#include <cstdint>
#include <vector>

#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

class fake_qmi_service {
 public:
  explicit fake_qmi_service(uint32_t answer_ms);
  ~fake_qmi_service();
  fake_qmi_service(const fake_qmi_service &) = delete;
  fake_qmi_service &operator=(const fake_qmi_service &) = delete;

  struct request {
    velmar_extend_qmi_msg_v01 envelope;
    unsigned timeout_ms;
  };
  // Every request sent while this fake lived, in order.
  const std::vector<request> &requests() const { return requests_; }

 private:
  friend struct fake_qmi_access;
  uint32_t answer_ms_;
  std::vector<request> requests_;
};
