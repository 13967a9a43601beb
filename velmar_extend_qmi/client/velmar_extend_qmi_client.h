// The process-wide Extend-QMI client session: opened on the first request,
// shared by every later one, never closed. Requests are synchronous and
// serialised by one process-wide mutex held from the handle check to the
// copy-out of the response.
//
// Return codes (common/velmar_status.h): 0, VELMAR_ERR_QMI_PARAM
// (-1), VELMAR_ERR_QMI_NO_CLIENT (-2), VELMAR_ERR_QMI_SEND (-3).
#pragma once

#include <qmi_client.h>

#include <cstdint>

// The request length of the long-running NV store requests (request id 1).
inline constexpr uint32_t VELMAR_EXTEND_QMI_LONG_REQ_LEN = 428;
// Time limit of an ordinary request.
inline constexpr uint32_t VELMAR_EXTEND_QMI_TIMEOUT_MS = 3000;

// Returns the open client, opening it first if needed; null when
// qmi_client_init fails (the next call tries again). Blocks until the service
// exists: there is deliberately no limit on that wait.
qmi_client_type velmar_extend_qmi_client_open();

// Sends req_len bytes of req_data as `request_id` (message 0x0002, 3000 ms).
// On entry *resp_len is the room in resp_buf (at most 512); on success it is
// the number of response bytes copied (0 when the response carried no data).
// On failure resp_buf and *resp_len are left as they were.
int32_t velmar_extend_qmi_send_sync(uint32_t request_id, const void *req_data, int32_t req_len,
                                    void *resp_buf, uint32_t *resp_len);

// The same for the long NV store operations: request id 1, always 428 bytes of
// req_data, and the caller's time limit.
int32_t velmar_extend_qmi_send_sync_long_process(const void *req_data, void *resp_buf,
                                                 uint32_t *resp_len, uint32_t timeout_ms);

// Indication callback of the Extend-QMI client: reports the indication and
// acts on none.
void velmar_extend_qmi_ind_cb(qmi_client_type handle, unsigned int msg_id, void *ind_buf,
                              unsigned int ind_buf_len, void *cb_data);
