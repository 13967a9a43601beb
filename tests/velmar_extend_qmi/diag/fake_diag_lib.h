// A scripted diag library for the transport's tests: it records every call in
// order and answers a request on its own thread ("the library's thread"), as
// the real one does, with the pieces the test chose. The thread is joined by
// the last Diag_LSM_DeInit.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

struct FakeDiag {
  uint16_t remote_mask = 0;
  int register_rc = 1001, signal_rc = 1001, support_rc = 1001, stream_rc = 1001, async_rc = 1001;
  uint16_t support_list = 0x02;
  std::vector<std::vector<uint8_t>> pieces;  // the response as handed over; none: no answer

  // What the library saw. Guarded by mu (workers call from their thread).
  std::mutex mu;
  std::vector<std::string> calls;
  std::vector<std::vector<uint8_t>> requests;
  std::vector<int> remote_procs;
};

// Back to a library that opens, answers nothing and records nothing.
FakeDiag &fake_diag_reset();
FakeDiag &fake_diag();
std::vector<std::string> fake_diag_calls();

// A response of n bytes starting with `code`, then 0, 1, 2, ...
std::vector<uint8_t> fake_response(size_t n, uint8_t code = 0x4B);
// The same bytes cut into pieces of at most `piece` bytes.
std::vector<std::vector<uint8_t>> fake_pieces(size_t n, size_t piece);
