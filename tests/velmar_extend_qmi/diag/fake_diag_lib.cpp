#include "fake_diag_lib.h"

#include <diag_lsm.h>
#include <diag_lsm_dci.h>

#include <cstring>
#include <thread>

namespace {

FakeDiag *g_fake = new FakeDiag;
int g_refs = 0;
std::thread g_answer;

int (*g_callback)(unsigned char *, int, void *) = nullptr;
void *g_callback_ctx = nullptr;

void record(const std::string &call) {
  std::lock_guard<std::mutex> lock(g_fake->mu);
  g_fake->calls.push_back(call);
}

void join_answer() {
  if (g_answer.joinable()) g_answer.join();
}

// Hands the scripted pieces over on the library's own thread.
template <typename Deliver>
void answer(const unsigned char *req, int len, Deliver deliver) {
  {
    std::lock_guard<std::mutex> lock(g_fake->mu);
    g_fake->requests.emplace_back(req, req + len);
  }
  join_answer();
  g_answer = std::thread([pieces = g_fake->pieces, deliver] {
    for (auto piece : pieces) deliver(piece);
  });
}

}  // namespace

FakeDiag &fake_diag() { return *g_fake; }

FakeDiag &fake_diag_reset() {
  join_answer();
  delete g_fake;
  g_fake = new FakeDiag;
  g_refs = 0;
  g_callback = nullptr;
  return *g_fake;
}

std::vector<std::string> fake_diag_calls() {
  std::lock_guard<std::mutex> lock(g_fake->mu);
  return g_fake->calls;
}

std::vector<uint8_t> fake_response(size_t n, uint8_t code) {
  std::vector<uint8_t> out(n);
  for (size_t i = 0; i < n; ++i) out[i] = static_cast<uint8_t>(i);
  if (n > 0) out[0] = code;
  return out;
}

std::vector<std::vector<uint8_t>> fake_pieces(size_t n, size_t piece) {
  const std::vector<uint8_t> all = fake_response(n);
  std::vector<std::vector<uint8_t>> out;
  for (size_t at = 0; at < n; at += piece) {
    out.emplace_back(all.begin() + at, all.begin() + std::min(n, at + piece));
  }
  return out;
}

extern "C" {

boolean Diag_LSM_Init(uint8_t *) {
  record("init");
  ++g_refs;
  return 1;
}

boolean Diag_LSM_DeInit(void) {
  record("deinit");
  if (g_refs > 0 && --g_refs == 0) join_answer();
  return 1;
}

void diag_register_callback(int (*cb)(unsigned char *, int, void *), void *ctx) {
  record("register_callback");
  g_callback = cb;
  g_callback_ctx = ctx;
}

void diag_register_remote_callback(int (*)(unsigned char *, int, void *), int proc, void *ctx) {
  std::lock_guard<std::mutex> lock(g_fake->mu);
  g_fake->remote_procs.push_back(proc);
  // The context must hold the processor number for as long as answers come.
  if (ctx == nullptr || *static_cast<int32_t *>(ctx) != proc) g_fake->calls.push_back("bad ctx");
}

int diag_has_remote_device(uint16_t *mask) {
  *mask = g_fake->remote_mask;
  return 1;
}

void diag_switch_logging(int mode, char *) { record("switch_logging " + std::to_string(mode)); }

int diag_callback_send_data(int proc, unsigned char *buf, int len) {
  record("callback_send " + std::to_string(proc));
  if (g_refs == 0) return -1;
  auto cb = g_callback;
  void *ctx = g_callback_ctx;
  answer(buf, len, [cb, ctx](std::vector<uint8_t> piece) {
    cb(piece.data(), static_cast<int>(piece.size()), ctx);
  });
  return 0;
}

int diag_register_dci_client(int *client_id, diag_dci_peripherals *list, int proc, void *os) {
  record("register_dci");
  if (*list != DIAG_CON_MPSS || proc != 0 || *static_cast<int *>(os) != 18) record("bad register");
  if (g_fake->register_rc == DIAG_DCI_NO_ERROR) *client_id = 7;
  return g_fake->register_rc;
}

int diag_register_dci_signal_data(int client_id, int) {
  record("signal " + std::to_string(client_id));
  return g_fake->signal_rc;
}

int diag_get_dci_support_list_proc(int, diag_dci_peripherals *list) {
  record("support");
  if (g_fake->support_rc == DIAG_DCI_NO_ERROR) *list = g_fake->support_list;
  return g_fake->support_rc;
}

int diag_register_dci_stream_proc(int, void (*)(unsigned char *, int),
                                  void (*)(unsigned char *, int)) {
  record("stream");
  return g_fake->stream_rc;
}

int diag_send_dci_async_req(int, unsigned char *buf, int bytes, unsigned char *rsp, int rsp_len,
                            void (*fn)(unsigned char *, int, void *), void *ctx) {
  record("async " + std::to_string(rsp_len));
  if (g_fake->async_rc == DIAG_DCI_NO_ERROR) {
    answer(buf, bytes, [rsp, fn, ctx](std::vector<uint8_t> piece) {
      memcpy(rsp, piece.data(), piece.size());
      fn(rsp, static_cast<int>(piece.size()), ctx);
    });
  }
  return g_fake->async_rc;
}

int diag_release_dci_client(int *client_id) {
  record("release " + std::to_string(*client_id));
  *client_id = 0;
  return DIAG_DCI_NO_ERROR;
}

}  // extern "C"
