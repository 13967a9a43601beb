#include "velmar_extend_qmi/velmar_diag_send.h"

#include <diag_lsm.h>
#include <diag_lsm_dci.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <mutex>

#include "common/velmar_log.h"

namespace {

constexpr uint32_t kHexMaxBytes = 4096;
constexpr size_t kHexLineBound = 12288;  // 4096 bytes at three characters, less one

constexpr int32_t kDiagReqMax = 4096;
constexpr int32_t kDiagRspMax = 10240;
constexpr int kDciRspPktSize = 16384;
constexpr int32_t kDefaultWaitTicks = 30;
constexpr uint32_t kCallbackTimeOutMax = 60000;
constexpr int32_t kCallbackTimeOutDefault = 3000;
constexpr int32_t kPieceSize = 4096;  // a DCI piece of this size is followed by more
constexpr useconds_t kTickUs = 100000;
constexpr useconds_t kCallbackAnswerUs = 200000;
constexpr unsigned kDciAnswerS = 1;
constexpr char kThreadName[] = "ORVA DIAG";

// The processor the tool addresses: the local, primary one.
constexpr int32_t g_diag_channel = 0;

// Context values handed to the library, one per processor (0 primary, 1..16
// remote). They are never written, so the library's thread may read them at
// any time for the life of the process.
int32_t g_diag_proc_ctx[17] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

// Serialises a with-result sender's whole run.
std::mutex g_diag_cmd_mutex;
// Guards the collected response (data, scratch copy) against the handlers.
std::mutex g_diag_rsp_mutex;
// One without-result exchange uses the library at a time.
std::mutex g_diag_async_mutex;
// Guards the channel label and the mask name while a registration logs them.
std::mutex g_diag_names_mutex;

char g_diag_channel_name[16];

struct velmar_diag_prev_buf_t {
  uint8_t *data;
  int32_t length;
};
velmar_diag_prev_buf_t g_diag_rsp_prev_buf;  // guarded by g_diag_rsp_mutex

// Read by the wait thread once per tick, written by the sender.
std::atomic<uint8_t> g_diag_waiting{0};
std::atomic<int32_t> g_diag_wait_timeout{0};
pthread_t g_diag_wait_thread;

// The wait thread of a send may still tick (up to 100 ms) after its sender
// returned. Each send starts a new generation, and a wait thread acts (sets
// the time-out flag, posts) only for its own, so a late one cannot end the
// next send's wait. Never destroyed: a detached thread may use it at exit.
struct WaitThreadState {
  std::mutex mu;  // also makes a thread's check-and-post one step
  std::condition_variable_any cv;
  uint64_t generation = 0;
  int running = 0;
};
WaitThreadState &wait_thread_state() {
  static auto *s = new WaitThreadState;
  return *s;
}

// Outstanding without-result workers, waited for at process exit.
struct WorkerCount {
  std::mutex mu;
  std::condition_variable_any cv;
  int count = 0;
  bool exit_hook = false;
};
WorkerCount &worker_count() {
  static auto *w = new WorkerCount;
  return *w;
}

void name_this_thread() { pthread_setname_np(pthread_self(), kThreadName); }

const char *proc_label(int32_t proc) {
  switch (proc) {
    case MSM:
      return "MSM";
    case MDM:
      return "MDM";
    case MDM_2:
      return "MDM_2";
    default:
      return "Unknown";
  }
}

// A new send starts from an empty collected response, in a new generation
// of wait threads.
void start_new_send() {
  {
    WaitThreadState &s = wait_thread_state();
    std::lock_guard<std::mutex> lock(s.mu);
    ++s.generation;
  }
  std::lock_guard<std::mutex> lock(g_diag_rsp_mutex);
  free(g_qcril_diag_rsp_buf.data);
  g_qcril_diag_rsp_buf.data = nullptr;
  g_qcril_diag_rsp_buf.length = 0;
  free(g_diag_rsp_prev_buf.data);
  g_diag_rsp_prev_buf = {};
}

// The checks both with-result senders start with; 0 when the send may go on.
int sender_checks(const char *fn, const uint8_t *data, int32_t data_len, const uint8_t *reply_buf,
                  const int32_t *p_reply_len) {
  // The check's own name is not the one this line gives: kept as engineers know it.
  if (velmar_diag_comand_input_check(data, data_len) != 0) {
    VELMAR_LOGF_LN(fn, "velmar_diag_comand_param_check fail");
    return 1;
  }
  if (velmar_diag_comand_output_check(reply_buf, p_reply_len) != 0) {
    VELMAR_LOGF_LN(fn, "velmar_diag_comand_output_check fail");
    return 1;
  }
  return 0;
}

// Waits on the semaphore and copies at most `capacity` collected bytes.
// Returns 0, or 1 when the wait thread gave up.
int wait_and_copy(const char *fn, uint8_t *reply_buf, int32_t *p_reply_len, int32_t capacity) {
  while (sem_wait(&g_diag_rsp_sem) != 0 && errno == EINTR) {
  }
  g_diag_waiting = 0;
  g_diag_wait_limit_100ms = kDefaultWaitTicks;
  {
    std::lock_guard<std::mutex> lock(g_diag_rsp_mutex);
    const int32_t collected = g_qcril_diag_rsp_buf.length;
    const int32_t n = collected < capacity ? collected : capacity;
    VELMAR_LOGF_LN(fn, "req end, data_size = %d, g_qcril_diag_rsp_buf.length = %d, reply_len = %d",
                   n, collected, capacity);
    *p_reply_len = n;
    if (n >= 1 && g_qcril_diag_rsp_buf.data != nullptr) {
      memcpy(reply_buf, g_qcril_diag_rsp_buf.data,
             static_cast<size_t>(n < kDiagRspMax ? n : kDiagRspMax));
    }
  }
  if (g_diag_wait_timeout == 1) {
    g_diag_wait_timeout = 0;
    return 1;
  }
  return 0;
}

// ---- the DCI exchange, shared by the with-result sender and the worker ------

struct DciHandlers {
  void (*log)(unsigned char *, int);
  void (*event)(unsigned char *, int);
  void (*rsp)(unsigned char *, int, void *);
};

struct DciExchange {
  int client_id = 0;
  diag_dci_peripherals list = DIAG_CON_MPSS;
  int signal_type = SIGCONT;  // the library's operating-system parameter
  unsigned char *rsp_pkt = nullptr;
};

enum class DciReached {
  kNoBuffer,       // nothing to release, nothing to free
  kNotRegistered,  // the buffer to free, no client
  kFailed,         // a registered client, a later step failed
  kSent,           // the request was accepted
};

// Allocates the response packet buffer, registers the client, its signal and
// stream listeners, asks for the support list and sends the request. Logs
// under `fn`, the operation that carries the exchange.
DciReached dci_setup(const char *fn, DciExchange &x, const uint8_t *req, int32_t len,
                     const DciHandlers &h) {
  x.rsp_pkt = static_cast<unsigned char *>(malloc(kDciRspPktSize));
  if (x.rsp_pkt == nullptr) {
    VELMAR_LOGF_LN(fn, "Unable to allocate memory for DCI rsp pkt, errno: %d", errno);
    return DciReached::kNoBuffer;
  }
  int err = diag_register_dci_client(&x.client_id, &x.list, g_diag_channel, &x.signal_type);
  if (err != DIAG_DCI_NO_ERROR) {
    VELMAR_LOGF_LN(fn, "Could not register with DCI, err: %d, errno: %d ch:%d", err, errno,
                   g_diag_channel);
    return DciReached::kNotRegistered;
  }
  VELMAR_LOGF_LN(fn, "Successfully registered with DCI for ch:%d, client ID = %d", g_diag_channel,
                 x.client_id);
  err = diag_register_dci_signal_data(x.client_id, SIGRTMIN + 30);
  if (err != DIAG_DCI_NO_ERROR) {
    VELMAR_LOGF_LN(fn, "Could not register signal for DCI Data for ch:%d, err: %d, errno: %d",
                   g_diag_channel, err, errno);
    return DciReached::kFailed;
  }
  VELMAR_LOGF_LN(fn, "DCI Status on Processors for ch%d:", g_diag_channel);
  err = diag_get_dci_support_list_proc(g_diag_channel, &x.list);
  if (err != DIAG_DCI_NO_ERROR) {
    VELMAR_LOGF_LN(fn, "Could not get support list for ch %d, err: %d, errno: %d", g_diag_channel,
                   err, errno);
    return DciReached::kFailed;
  }
  // A modem that is down is only reported: the request still goes out.
  if ((x.list & DIAG_CON_MPSS) != 0) {
    VELMAR_LOGF_LN(fn, "MPSS on ch:%d: UP", g_diag_channel);
  } else {
    VELMAR_LOGF_LN(fn, "MPSS on ch:%d: DOWN", g_diag_channel);
  }
  VELMAR_LOGF_LN(fn, "Opening Data Stream, registering listeners for ch:%d", g_diag_channel);
  err = diag_register_dci_stream_proc(x.client_id, h.log, h.event);
  if (err != DIAG_DCI_NO_ERROR) {
    VELMAR_LOGF_LN(fn, "Unable to register DCI stream for ch:%d, err: %d, errno: %d",
                   g_diag_channel, err, errno);
    return DciReached::kFailed;
  }
  VELMAR_LOGF_LN(fn, "Sending Asynchronous Command for ch:%d", g_diag_channel);
  err = diag_send_dci_async_req(x.client_id, const_cast<unsigned char *>(req), len, x.rsp_pkt,
                                kDciRspPktSize, h.rsp, nullptr);
  if (err != DIAG_DCI_NO_ERROR) {
    // The result code stands where the peripheral would: the line is kept as
    // engineers know it.
    VELMAR_LOGF_LN(fn, "Error sending SEND_REQUEST_ASYNC to peripheral %d for ch:%d", err,
                   g_diag_channel);
    return DciReached::kFailed;
  }
  return DciReached::kSent;
}

// Closes the session first and only then releases the client, so the library
// delivers nothing more into the buffer that is freed last.
void dci_teardown(const char *fn, DciExchange &x, DciReached reached, void (*close_session)()) {
  close_session();
  if (reached == DciReached::kFailed || reached == DciReached::kSent) {
    const int err = diag_release_dci_client(&x.client_id);
    VELMAR_LOGF_LN(fn, "Releasing DCI connection, err: %d, errno: %d", err, errno);
  }
  free(x.rsp_pkt);
  x.rsp_pkt = nullptr;
}

void close_library() { Diag_LSM_DeInit(); }

// The request copy a worker owns: a 32-bit length, then the bytes.
constexpr size_t kCopyHeader = sizeof(int32_t);

void worker_done() {
  WorkerCount &w = worker_count();
  std::lock_guard<std::mutex> lock(w.mu);
  --w.count;
  w.cv.notify_all();
}

}  // namespace

int32_t g_diag_init_status = 0;
sem_t g_diag_rsp_sem;
char g_diag_mask_name[101];
velmar_diag_rsp_buf_t g_qcril_diag_rsp_buf{nullptr, 0};
std::atomic<int32_t> g_diag_wait_limit_100ms{kDefaultWaitTicks};

void velmar_print_data_with_hex(const uint8_t *data, uint32_t length) {
  if (data == nullptr) {
    VELMAR_LOG_LN("print_data_with_hex, data is null");
    return;
  }
  if (length == 0 || length > kHexMaxBytes) {
    VELMAR_LOG_LN("print_data_with_hex, invalid data len(%d)", static_cast<int>(length));
    return;
  }
  static thread_local char line[kHexLineBound + 1];
  char item[6];
  snprintf(line, sizeof line, "%02X", data[0]);
  size_t used = 2;
  for (uint32_t i = 1; i < length; ++i) {
    int n = snprintf(item, sizeof item, " %02X", data[i]);
    if (used + static_cast<size_t>(n) > kHexLineBound) break;
    memcpy(line + used, item, static_cast<size_t>(n) + 1);
    used += static_cast<size_t>(n);
  }
  VELMAR_LOG_LN("data hex show, len(%d), data: %s", static_cast<int>(length), line);
}

// ---- session and channel registration ----------------------------------------

void velmar_diag_init_with_result() {
  VELMAR_LOG_LN("function entry ------------->");
  if (g_diag_init_status != 0) {
    VELMAR_LOG_LN("diag init done, g_diag_init_status = %d", g_diag_init_status);
    ++g_diag_init_status;
  } else {
    // Created whatever the library says, so that a sender's wait can always
    // end by its time limit.
    sem_init(&g_diag_rsp_sem, 0, 0);
    if (Diag_LSM_Init(nullptr) != 0) {
      g_diag_init_status = 1;
    } else {
      VELMAR_LOG_LN("LSM init failed");
    }
  }
  VELMAR_LOG_LN("function exit <-------------");
}

void velmar_diag_deinit_with_result() {
  VELMAR_LOG_LN("function entry ------------->");
  Diag_LSM_DeInit();
  // One close ends the session however many opens were counted.
  g_diag_init_status = 0;
  sem_destroy(&g_diag_rsp_sem);
  VELMAR_LOG_LN("function exit <-------------");
}

void velmar_print_diag_mask_name(uint16_t mask) {
  static constexpr const char *kNames[] = {" APSS",  " MPSS",    " LPASS",
                                           " WCNSS", " SENSORS", " WDSP"};
  memset(g_diag_mask_name, 0, sizeof g_diag_mask_name);
  // Only the lowest set bit is named, to keep the line short.
  for (unsigned bit = 0; bit < std::size(kNames); ++bit) {
    if ((mask & (1u << bit)) != 0) {
      strncat(g_diag_mask_name, kNames[bit], sizeof g_diag_mask_name - 1);
      break;
    }
  }
  g_diag_mask_name[100] = '\0';
}

void velmar_diag_register_callback(int (*callback)(unsigned char *, int, void *)) {
  int32_t data_primary = 0;
  int32_t data_remote = 0;
  uint16_t remote_mask = 0;
  diag_register_callback(callback, &g_diag_proc_ctx[data_primary]);
  diag_has_remote_device(&remote_mask);
  {
    std::lock_guard<std::mutex> lock(g_diag_names_mutex);
    memset(g_diag_channel_name, 0, sizeof g_diag_channel_name);
    strncpy(g_diag_channel_name, proc_label(g_diag_channel), sizeof g_diag_channel_name - 1);
    velmar_print_diag_mask_name(remote_mask);
    VELMAR_LOG_LN(
        "register call back, g_diag_channel = [%d]%s, data_primary = %d, remote_mask = [%d]%s",
        g_diag_channel, g_diag_channel_name, data_primary, remote_mask, g_diag_mask_name);
  }
  // Bit k of the mask is remote processor k + 1.
  for (uint32_t bits = remote_mask, proc = 1; bits != 0; bits >>= 1, ++proc) {
    if ((bits & 1u) == 0) continue;
    data_remote = static_cast<int32_t>(proc);
    VELMAR_LOG_LN("register remote call back, data_remote = %d", data_remote);
    diag_register_remote_callback(callback, data_remote, &g_diag_proc_ctx[data_remote]);
  }
}

// ---- with-result sends --------------------------------------------------------

int velmar_diag_comand_input_check(const uint8_t *data, int32_t data_len) {
  VELMAR_LOG_LN("diag_comand, data_len = %d", data_len);
  if (data == nullptr) {
    VELMAR_LOG_LN("data is null");
    return 1;
  }
  if (static_cast<uint32_t>(data_len) - 1 >= static_cast<uint32_t>(kDiagReqMax)) {
    VELMAR_LOG_LN("Invalid input parameter, data_len = %d", data_len);
    return 1;
  }
  velmar_print_data_with_hex(data, static_cast<uint32_t>(data_len));
  return 0;
}

int velmar_diag_comand_output_check(const uint8_t *reply_buf, const int32_t *p_reply_len) {
  if (reply_buf == nullptr) {
    VELMAR_LOG_LN("reply_buf is null");
    return 1;
  }
  if (p_reply_len == nullptr) {
    VELMAR_LOG_LN("p_reply_len is null");
    return 1;
  }
  VELMAR_LOG_LN("reply_len = %d", *p_reply_len);
  if (*p_reply_len <= 0) {
    VELMAR_LOG_LN("Invalid output parameter, reply_len = %d", *p_reply_len);
    return 1;
  }
  return 0;
}

int velmar_diag_cmd_response_check(const unsigned char *ptr, int len, const void *context_data) {
  int32_t proc = -1;
  if (context_data == nullptr) {
    VELMAR_LOG_LN("context_data is null");
  } else {
    proc = *static_cast<const int32_t *>(context_data);
  }
  VELMAR_LOG_LN("================ response from %d[%s], len = %d ========================", proc,
                proc_label(proc), len);
  if (ptr == nullptr) {
    VELMAR_LOG_LN("ptr is null");
    return 1;
  }
  if (static_cast<uint32_t>(len) - 1 >= static_cast<uint32_t>(kDiagRspMax)) {
    VELMAR_LOG_LN("Invalid parameter, len = %d", len);
    return 1;
  }
  velmar_print_data_with_hex(ptr, static_cast<uint32_t>(len));
  return 0;
}

int velmar_diag_cmd_response_by_callback(unsigned char *ptr, int len, void *context_data) {
  VELMAR_LOG_LN("function entry ------------->");
  if (velmar_diag_cmd_response_check(ptr, len, context_data) != 0) {
    VELMAR_LOG_LN("velmar_diag_cmd_response_check fail");
    return 1;
  }
  auto *out = static_cast<uint8_t *>(malloc(static_cast<size_t>(len) + 1));
  if (out == nullptr) {
    VELMAR_LOG_LN("Failed to allocate memory for ptr_out");
    return 1;
  }
  {
    // A response replaces the one before; the sender copies under this lock.
    std::lock_guard<std::mutex> lock(g_diag_rsp_mutex);
    free(g_qcril_diag_rsp_buf.data);
    g_qcril_diag_rsp_buf.data = out;
    memcpy(out, ptr, static_cast<size_t>(len));
    g_qcril_diag_rsp_buf.length = len;
  }
  VELMAR_LOG_LN("callback, cmd_code = 0x%02x, data_size = %d", ptr[0], len);
  sem_post(&g_diag_rsp_sem);
  VELMAR_LOG_LN("function exit <-------------");
  return 0;
}

void velmar_diag_cmd_response_by_dci(unsigned char *ptr, int len, void *context_data) {
  VELMAR_LOG_LN("function entry ------------->");
  {
    std::lock_guard<std::mutex> lock(g_diag_rsp_mutex);
    if (velmar_diag_cmd_response_check(ptr, len, context_data) != 0) {
      VELMAR_LOG_LN("velmar_diag_cmd_response_check fail");
    } else if (g_qcril_diag_rsp_buf.data == nullptr) {
      auto *out = static_cast<uint8_t *>(malloc(static_cast<size_t>(len) + 1));
      if (out == nullptr) {
        VELMAR_LOG_LN("Failed to allocate memory for ptr_out_1");
      } else {
        memcpy(out, ptr, static_cast<size_t>(len));
        g_qcril_diag_rsp_buf.data = out;
        g_qcril_diag_rsp_buf.length = len;
      }
    } else {
      const int32_t held = g_qcril_diag_rsp_buf.length;
      auto *prev = static_cast<uint8_t *>(malloc(static_cast<size_t>(held) + 1));
      auto *joined = prev == nullptr
                         ? nullptr
                         : static_cast<uint8_t *>(malloc(static_cast<size_t>(held) + len + 1));
      if (prev == nullptr) {
        VELMAR_LOG_LN("Failed to allocate memory for ptr_out_2");
      } else {
        free(g_diag_rsp_prev_buf.data);
        g_diag_rsp_prev_buf = {prev, held};
        memcpy(prev, g_qcril_diag_rsp_buf.data, static_cast<size_t>(held));
        if (joined == nullptr) {
          VELMAR_LOG_LN("Failed to allocate memory for ptr_out_3");
        } else {
          free(g_qcril_diag_rsp_buf.data);
          g_qcril_diag_rsp_buf.data = joined;
          memcpy(joined, prev, static_cast<size_t>(held));
          memcpy(joined + held, ptr, static_cast<size_t>(len));
          g_qcril_diag_rsp_buf.length = held + len;
        }
      }
    }
    if (ptr != nullptr && static_cast<uint32_t>(len) - 1 < static_cast<uint32_t>(kDiagRspMax)) {
      VELMAR_LOG_LN("response, cmd_code = 0x%02x, data_size = %d", ptr[0], len);
      // A piece of exactly 4096 bytes is taken to be followed by more.
      if (len != kPieceSize) sem_post(&g_diag_rsp_sem);
    }
  }
  VELMAR_LOG_LN("function exit <-------------");
}

void velmar_diag_cmd_response_by_dci_log_stream(unsigned char *ptr, int len) {
  VELMAR_LOG_LN("function entry ------------->");
  velmar_print_data_with_hex(ptr, static_cast<uint32_t>(len));
  VELMAR_LOG_LN("function exit <-------------");
}

void velmar_diag_cmd_response_by_dci_event_stream(unsigned char *ptr, int len) {
  VELMAR_LOG_LN("function entry ------------->");
  velmar_print_data_with_hex(ptr, static_cast<uint32_t>(len));
  VELMAR_LOG_LN("function exit <-------------");
}

void velmar_diag_wait_for_wait_thread() {
  WaitThreadState &s = wait_thread_state();
  std::unique_lock<std::mutex> lock(s.mu);
  s.cv.wait(lock, [&s] { return s.running == 0; });
}

void velmar_diag_cmd_send_with_result_wait_create_thread() {
  VELMAR_LOG_LN("function entry ------------->");
  WaitThreadState &s = wait_thread_state();
  uintptr_t generation;
  {
    std::lock_guard<std::mutex> lock(s.mu);
    ++s.running;
    generation = s.generation;
  }
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
  const int conf =
      pthread_create(&g_diag_wait_thread, &attr, velmar_diag_cmd_send_with_result_wait_thread_proc,
                     reinterpret_cast<void *>(generation));
  pthread_attr_destroy(&attr);
  if (conf != 0) {
    std::lock_guard<std::mutex> lock(s.mu);
    --s.running;
  }
  VELMAR_LOG_LN("velmar daig is created, conf = %d", conf);
  VELMAR_LOG_LN("function exit <-------------");
}

void *velmar_diag_cmd_send_with_result_wait_thread_proc(void *param) {
  name_this_thread();
  VELMAR_LOG_LN("function entry ------------->");
  WaitThreadState &s = wait_thread_state();
  const auto generation = reinterpret_cast<uintptr_t>(param);
  auto own_send = [&s, generation] {
    std::lock_guard<std::mutex> lock(s.mu);
    return s.generation == generation;
  };
  int32_t cnt_of_100ms = 0;
  bool waiting = false;
  int32_t limit = 0;
  do {
    usleep(kTickUs);
    ++cnt_of_100ms;
    VELMAR_LOG_LN("velmar_diag_cmd_send_with_result_wait_thread_proc, cnt_of_100ms = %d",
                  cnt_of_100ms);
    waiting = g_diag_waiting == 1;
    limit = g_diag_wait_limit_100ms;
  } while (waiting && cnt_of_100ms < limit && own_send());

  std::unique_lock<std::mutex> lock(s.mu);
  if (s.generation != generation) {
    // A later send owns the flags and the semaphore now.
  } else if (const int32_t collected = g_qcril_diag_rsp_buf.length;
             collected != 0 && (collected & (kPieceSize - 1)) == 0) {
    // A response made only of 4096-byte pieces never gets a short last piece.
    VELMAR_LOG_LN("stop waiting, receive success, length is times of 4096");
    sem_post(&g_diag_rsp_sem);
  } else if (waiting && cnt_of_100ms >= limit) {
    VELMAR_LOG_LN("stop waiting");
    // The flag before the post: the woken sender reads it at once.
    g_diag_wait_timeout = 1;
    sem_post(&g_diag_rsp_sem);
  }
  --s.running;
  s.cv.notify_all();
  lock.unlock();
  VELMAR_LOG_LN("function exit <-------------");
  return nullptr;
}

int velmar_diag_cmd_send_with_result_by_callback_mode(const uint8_t *data, int32_t data_len,
                                                      uint8_t *reply_buf, int32_t *p_reply_len,
                                                      int32_t time_out) {
  VELMAR_LOG_LN("function entry ------------->");
  int result = 1;
  std::lock_guard<std::mutex> lock(g_diag_cmd_mutex);
  if (sender_checks(__func__, data, data_len, reply_buf, p_reply_len) == 0) {
    start_new_send();
    const int32_t capacity = *p_reply_len;
    velmar_diag_init_with_result();
    velmar_diag_register_callback(velmar_diag_cmd_response_by_callback);
    diag_switch_logging(CALLBACK_MODE, nullptr);
    const int ret_send = diag_callback_send_data(MSM, const_cast<unsigned char *>(data), data_len);
    VELMAR_LOG_LN("ret_send = %d, will wait callback", ret_send);
    if (ret_send != 0) {
      VELMAR_LOG_LN("Fail to send diag cmd");
    } else {
      if (static_cast<uint32_t>(time_out) - 1 >= kCallbackTimeOutMax) {
        VELMAR_LOG_LN("Time out is invalid, set default");
        time_out = kCallbackTimeOutDefault;
      }
      g_diag_waiting = 1;
      g_diag_wait_limit_100ms = time_out / 100;
      VELMAR_LOG_LN("Command time = %d * 100ms", g_diag_wait_limit_100ms.load());
      velmar_diag_cmd_send_with_result_wait_create_thread();
      result = wait_and_copy(__func__, reply_buf, p_reply_len, capacity);
    }
    diag_switch_logging(USB_MODE, nullptr);
    velmar_diag_deinit_with_result();
  }
  VELMAR_LOG_LN("function exit <-------------");
  return result;
}

int velmar_diag_cmd_send_with_result_by_dci_mode(const uint8_t *data, int32_t data_len,
                                                 uint8_t *reply_buf, int32_t *p_reply_len,
                                                 int32_t time_out) {
  VELMAR_LOG_LN("function entry ------------->");
  int result = 1;
  std::lock_guard<std::mutex> lock(g_diag_cmd_mutex);
  if (sender_checks(__func__, data, data_len, reply_buf, p_reply_len) == 0) {
    start_new_send();
    const int32_t capacity = *p_reply_len;
    velmar_diag_init_with_result();
    DciExchange x;
    const DciReached reached =
        dci_setup(__func__, x, data, data_len,
                  {velmar_diag_cmd_response_by_dci_log_stream,
                   velmar_diag_cmd_response_by_dci_event_stream, velmar_diag_cmd_response_by_dci});
    if (reached == DciReached::kSent) {
      // No validation here, unlike callback mode: below 100 ms is one tick.
      g_diag_waiting = 1;
      g_diag_wait_limit_100ms = time_out / 100;
      VELMAR_LOG_LN("Dci Command time = %d", g_diag_wait_limit_100ms.load());
      velmar_diag_cmd_send_with_result_wait_create_thread();
      result = wait_and_copy(__func__, reply_buf, p_reply_len, capacity);
      std::lock_guard<std::mutex> rsp_lock(g_diag_rsp_mutex);
      free(g_diag_rsp_prev_buf.data);
      g_diag_rsp_prev_buf.data = nullptr;
      free(g_qcril_diag_rsp_buf.data);
      g_qcril_diag_rsp_buf.data = nullptr;
    }
    dci_teardown(__func__, x, reached, velmar_diag_deinit_with_result);
  }
  VELMAR_LOG_LN("function exit <-------------");
  return result;
}

// ---- without-result sends -----------------------------------------------------

int velmar_diag_cmd_response_by_callback_no_handle(unsigned char *, int len, void *) {
  VELMAR_LOG_LN("len = %d", len);
  return 0;
}

void velmar_diag_cmd_response_by_dci_no_handle(unsigned char *, int len, void *) {
  VELMAR_LOG_LN("len = %d", len);
}

void velmar_diag_cmd_response_by_dci_log_stream_no_handle(unsigned char *, int len) {
  VELMAR_LOG_LN("len = %d", len);
}

void velmar_diag_cmd_response_by_dci_event_stream_no_handle(unsigned char *, int len) {
  VELMAR_LOG_LN("len = %d", len);
}

void velmar_diag_wait_for_workers() {
  WorkerCount &w = worker_count();
  std::unique_lock<std::mutex> lock(w.mu);
  w.cv.wait(lock, [&w] { return w.count == 0; });
}

int velmar_diag_cmd_send_without_result_start_thread(const uint8_t *data, int32_t data_len,
                                                     int32_t diag_work_mode) {
  VELMAR_LOG_LN("function entry ------------->");
  if (velmar_diag_comand_input_check(data, data_len) != 0) {
    VELMAR_LOG_LN("velmar_diag_comand_input_check fail");
    return 1;
  }
  auto *copy = static_cast<uint8_t *>(malloc(static_cast<size_t>(data_len) + kCopyHeader + 1));
  if (copy == nullptr) {
    VELMAR_LOG_LN("Failed to allocate memory for ptr_out");
    return 1;
  }
  memcpy(copy, &data_len, kCopyHeader);
  memcpy(copy + kCopyHeader, data, static_cast<size_t>(data_len));

  {
    // Counted before the thread exists, so an exit right after this call
    // still waits for it.
    WorkerCount &w = worker_count();
    std::lock_guard<std::mutex> lock(w.mu);
    ++w.count;
    if (!w.exit_hook) {
      w.exit_hook = true;
      atexit(velmar_diag_wait_for_workers);
    }
  }
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
  pthread_t worker;
  const int conf = pthread_create(
      &worker, &attr,
      diag_work_mode == 0 ? velmar_diag_cmd_send_without_result_by_callback_mode_thread_proc
                          : velmar_diag_cmd_send_without_result_by_dci_mode_thread_proc,
      copy);
  pthread_attr_destroy(&attr);
  if (conf != 0) {
    free(copy);
    worker_done();
  }
  VELMAR_LOG_LN("velmar daig is created, conf = %d, diag_work_mode = %d", conf, diag_work_mode);
  VELMAR_LOG_LN("function exit <-------------");
  return 0;
}

namespace {

// The frame of both workers: one at a time, the request copy unpacked and
// freed, the library opened around `send` (which says whether it got far
// enough to write the exit line). A worker that ends early (no request, no
// library, no client) writes no exit line; every worker counts itself out last.
template <typename Send>
void *run_worker(const char *fn, void *param, Send send) {
  name_this_thread();
  VELMAR_LOGF_LN(fn, "function entry ------------->");
  bool finished = false;
  {
    std::lock_guard<std::mutex> lock(g_diag_async_mutex);
    auto *copy = static_cast<uint8_t *>(param);
    if (copy == nullptr) {
      VELMAR_LOGF_LN(fn, "param is null");
    } else {
      int32_t data_len = 0;
      memcpy(&data_len, copy, kCopyHeader);
      VELMAR_LOGF_LN(fn, "data_len = %d", data_len);
      if (Diag_LSM_Init(nullptr) == 0) {
        VELMAR_LOGF_LN(fn, "LSM init failed");
      } else {
        finished = send(copy + kCopyHeader, data_len);
      }
      free(copy);
    }
  }
  if (finished) VELMAR_LOGF_LN(fn, "function exit <-------------");
  worker_done();
  return nullptr;
}

}  // namespace

void *velmar_diag_cmd_send_without_result_by_callback_mode_thread_proc(void *param) {
  static constexpr const char *fn = __func__;
  return run_worker(fn, param, [](uint8_t *req, int32_t len) {
    velmar_diag_register_callback(velmar_diag_cmd_response_by_callback_no_handle);
    diag_switch_logging(CALLBACK_MODE, nullptr);
    const int ret_send = diag_callback_send_data(MSM, req, len);
    VELMAR_LOGF_LN(fn, "ret_send = %d, will wait callback", ret_send);
    usleep(kCallbackAnswerUs);  // the time the modem is given to answer
    diag_switch_logging(USB_MODE, nullptr);
    Diag_LSM_DeInit();
    return true;
  });
}

void *velmar_diag_cmd_send_without_result_by_dci_mode_thread_proc(void *param) {
  static constexpr const char *fn = __func__;
  return run_worker(fn, param, [](uint8_t *req, int32_t len) {
    DciExchange x;
    const DciReached reached = dci_setup(fn, x, req, len,
                                         {velmar_diag_cmd_response_by_dci_log_stream_no_handle,
                                          velmar_diag_cmd_response_by_dci_event_stream_no_handle,
                                          velmar_diag_cmd_response_by_dci_no_handle});
    // The time the modem is given to answer; the answer is only logged.
    if (reached == DciReached::kSent) sleep(kDciAnswerS);
    dci_teardown(fn, x, reached, close_library);
    return reached == DciReached::kFailed || reached == DciReached::kSent;
  });
}
