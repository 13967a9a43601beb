// Diag command transport: one diag library session per with-result send, the
// callback and DCI response channels, the with-result senders (the caller
// blocks until the response or the time limit) and the without-result worker
// threads; and the one-line hex printer.
#pragma once

#include <semaphore.h>

#include <atomic>
#include <cstdint>

// Logs `data` as one line of upper-case hex ("%02X", then " %02X" each), at
// most 4096 bytes. A null pointer or a length outside 1..4096 is reported in
// the log instead.
void velmar_print_data_with_hex(const uint8_t *data, uint32_t length);

// ---- session and channel registration ----------------------------------------

// Opens of the with-result session: 0 when closed; the first successful open
// sets 1, each further open counts one more. Touched only by with-result
// senders, under their command mutex.
extern int32_t g_diag_init_status;
// Posted by the response handlers and the wait thread to end a sender's wait.
extern sem_t g_diag_rsp_sem;

// Opens the library session (or only counts when one is open). The semaphore
// is created even when the library cannot be opened, so a sender's wait then
// still ends by its time limit. No result: a failure is only logged.
void velmar_diag_init_with_result();
// Closes the session whatever the count, and destroys the semaphore.
void velmar_diag_deinit_with_result();
// Registers `callback` for processor 0 and for each remote processor that the
// library reports (bit k of the mask is processor k + 1). The context values
// handed to the library live for the whole process.
void velmar_diag_register_callback(int (*callback)(unsigned char *, int, void *));
// Fills g_diag_mask_name with the name of the lowest of bits 0..5 that is set
// (" APSS", " MPSS", ...), or leaves it empty.
void velmar_print_diag_mask_name(uint16_t mask);
extern char g_diag_mask_name[101];

// ---- with-result sends --------------------------------------------------------

// The collected response: replaced by each callback response, appended to by
// each DCI piece. `length` is read by the wait thread without a lock.
struct velmar_diag_rsp_buf_t {
  uint8_t *data;
  std::atomic<int32_t> length;
};
extern velmar_diag_rsp_buf_t g_qcril_diag_rsp_buf;
// Wait limit in 100 ms ticks; 30 between sends.
extern std::atomic<int32_t> g_diag_wait_limit_100ms;

// Both send `data` (1..4096 bytes), wait up to `time_out` ms for the response
// and copy at most *p_reply_len bytes of it into reply_buf, leaving the count
// in *p_reply_len. 0 when a response was collected in time, 1 on any failure
// or time-out (bytes collected before a time-out are still copied). Callback
// mode takes 0 or more than 60000 ms as 3000; DCI mode takes time_out / 100
// ticks as it is.
int velmar_diag_cmd_send_with_result_by_callback_mode(const uint8_t *data, int32_t data_len,
                                                      uint8_t *reply_buf, int32_t *p_reply_len,
                                                      int32_t time_out);
int velmar_diag_cmd_send_with_result_by_dci_mode(const uint8_t *data, int32_t data_len,
                                                 uint8_t *reply_buf, int32_t *p_reply_len,
                                                 int32_t time_out);

// 0 when 1..4096 bytes (and dumps them in hex), else 1.
int velmar_diag_comand_input_check(const uint8_t *data, int32_t data_len);
// 0 when the reply buffer and a positive capacity are given, else 1.
int velmar_diag_comand_output_check(const uint8_t *reply_buf, const int32_t *p_reply_len);
// 0 when a response of 1..10240 bytes may be stored (and dumps it), else 1.
int velmar_diag_cmd_response_check(const unsigned char *ptr, int len, const void *context_data);

// Handlers given to the library; they run on its thread.
int velmar_diag_cmd_response_by_callback(unsigned char *ptr, int len, void *context_data);
void velmar_diag_cmd_response_by_dci(unsigned char *ptr, int len, void *context_data);
void velmar_diag_cmd_response_by_dci_log_stream(unsigned char *ptr, int len);
void velmar_diag_cmd_response_by_dci_event_stream(unsigned char *ptr, int len);

// Starts the detached "ORVA DIAG" thread that ticks every 100 ms until the
// sender stops waiting or the limit is reached, then ends the wait: success
// when the collected length is a whole multiple of 4096, else a time-out.
void velmar_diag_cmd_send_with_result_wait_create_thread();
// Blocks until every wait thread has ended (each ends at most one tick after
// its send returned). A wait thread acts only for its own send, so a new send
// need not wait.
void velmar_diag_wait_for_wait_thread();
void *velmar_diag_cmd_send_with_result_wait_thread_proc(void *);

// ---- without-result sends -----------------------------------------------------

// Copies the request and hands it to a detached "ORVA DIAG" worker: work mode
// 0 sends on the callback channel and gives the answer 200 ms, any other mode
// through DCI with 1 s. 0 once handed over (also when the thread could not be
// started: that is only logged), 1 for a bad request or a failed copy. The
// process waits for outstanding workers before it exits.
int velmar_diag_cmd_send_without_result_start_thread(const uint8_t *data, int32_t data_len,
                                                     int32_t diag_work_mode);
void *velmar_diag_cmd_send_without_result_by_callback_mode_thread_proc(void *param);
void *velmar_diag_cmd_send_without_result_by_dci_mode_thread_proc(void *param);

// Handlers of the without-result workers: each logs the length only.
int velmar_diag_cmd_response_by_callback_no_handle(unsigned char *ptr, int len, void *context_data);
void velmar_diag_cmd_response_by_dci_no_handle(unsigned char *ptr, int len, void *context_data);
void velmar_diag_cmd_response_by_dci_log_stream_no_handle(unsigned char *ptr, int len);
void velmar_diag_cmd_response_by_dci_event_stream_no_handle(unsigned char *ptr, int len);

// Blocks until every worker started so far has ended (each ends after its own
// 200 ms or 1 s wait). Registered to run at process exit by the first start.
void velmar_diag_wait_for_workers();
