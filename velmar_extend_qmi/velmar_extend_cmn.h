// Common requests (request id 4, kind 2): a command type t, a length l and a
// value v, answered in the same layout.
#pragma once

#include <qmi_client.h>

#include <cstdint>

#include "velmar_extend_qmi/client/velmar_extend_qmi_records.h"

// Sends one common request and leaves the answer in *rsp (508 bytes of it are
// cleared first and are all that is ever written). Refusals (rsp null, l of
// 500 or more, v null with l non-zero) send nothing and are only logged, so a
// caller must read rsp->l == 0 as "no answer". An l of 497..499 passes the
// length bound but not the copy into the 496-byte value area: the process is
// ended (abort, with a message on stderr).
void velmar_send_common_qmi_msg(int32_t t, uint32_t l, const uint8_t *v, velmar_cmn_record *rsp);

// Sends one common request and prints the answer. An l above 499 or a null v
// still sends the request, with l 0 and no value; l of 497..499 ends the
// process as above. Returns the result of velmar_extend_qmi_send_sync.
int32_t velmar_cmn_cmd_send(int32_t t, uint32_t l, const uint8_t *v);

// Sends a prepared request id 4 record of req_len bytes and logs the exchange;
// returns the result of velmar_extend_qmi_send_sync (*rsp_len as there).
int32_t velmar_common_qmi_req(const void *req, int32_t req_len, void *rsp, uint32_t *rsp_len);

// Indication callback for clients of other services: logs the message id only.
void velmar_qcril_qmi_client_common_empty_unsol_ind_cb(qmi_client_type handle, unsigned int msg_id,
                                                       void *ind_buf, unsigned int ind_buf_len,
                                                       void *cb_data);

// Copies n bytes of src into the value area of rec. An n larger than the area
// is a broken caller contract that must not become a memory overrun: it ends
// the process with a message on stderr.
void velmar_cmn_copy_value(velmar_cmn_record &rec, const uint8_t *src, uint32_t n);

// NV sync: prints "Will trigger NV SYNC" and sends common type 35; the answer
// is not examined.
void velmar_cmn_test_nv_sync();

// SAR DSI: asks the platform SAR service for its RF state and prints
// "SAR DSI: %d" (-1 when the service could not be reached).
void velmar_cmn_test_get_sar_dsi();
