#include "velmar_extend_qmi/velmar_extend_cmn.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/velmar_console.h"
#include "common/velmar_log.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_client.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace {

// A common request of type t with l bytes of v (v may be null when l is 0).
velmar_cmn_record cmn_request(int32_t t, uint32_t l, const uint8_t *v) {
  velmar_cmn_record req{};
  req.kind = VELMAR_COMMON_KIND_CMN;
  req.t = static_cast<uint32_t>(t);
  velmar_cmn_copy_value(req, v, l);
  req.l = l;
  return req;
}

int32_t cmn_exchange(const velmar_cmn_record &req, velmar_cmn_record *rsp) {
  uint32_t room = VELMAR_CMN_RSP_ROOM;
  return velmar_extend_qmi_send_sync(VELMAR_REQUEST_ID_COMMON, &req, sizeof req, rsp, &room);
}

}  // namespace

void velmar_cmn_copy_value(velmar_cmn_record &rec, const uint8_t *src, uint32_t n) {
  if (n > sizeof rec.v) {
    fprintf(stderr,
            "rpk: common value of %u bytes does not fit the %zu-byte value area, aborting\n", n,
            sizeof rec.v);
    abort();
  }
  if (n != 0) memcpy(rec.v, src, n);
}

void velmar_send_common_qmi_msg(int32_t t, uint32_t l, const uint8_t *v, velmar_cmn_record *rsp) {
  VELMAR_LOG_LN("function entry ------------->");
  if (rsp == nullptr) {
    VELMAR_LOG_LN("rsp is NULL");
  } else {
    memset(rsp, 0, VELMAR_CMN_RSP_ROOM);
    VELMAR_LOG_LN("t %d", t);
    VELMAR_LOG_LN("l %d", l);
    if (l >= VELMAR_CMN_LEN_LIMIT) {
      VELMAR_LOG_LN("l is out of range");
    } else if (l != 0 && v == nullptr) {
      VELMAR_LOG_LN("v is null");
    } else {
      const velmar_cmn_record req = cmn_request(t, l, v);
      // Callers judge the answer by rsp->result and rsp->l, not by this code.
      (void)cmn_exchange(req, rsp);
    }
  }
  VELMAR_LOG_LN("function exit <-------------");
}

int32_t velmar_cmn_cmd_send(int32_t t, uint32_t l, const uint8_t *v) {
  printf("velmar_cmn_cmd_send, t: %d, l: %d\n", t, l);
  // Unlike velmar_send_common_qmi_msg, a bad value still sends the command.
  if (l >= VELMAR_CMN_LEN_LIMIT || v == nullptr) l = 0;
  const velmar_cmn_record req = cmn_request(t, l, v);

  velmar_cmn_record rsp{};
  const int32_t result = cmn_exchange(req, &rsp);
  printf("result = %d, rsp.result = %d\n", result, rsp.result);
  if (result != 0) {
    puts("velmar_extend_qmi_send_sync fail");
  } else if (rsp.result != 0) {
    puts("rsp.result fail");
  } else {
    // The echoed t and l words, then the value: l + 8 bytes from t on.
    const uint32_t shown = l + 8;
    printf("\ndata len(%d)\ndata:", shown);
    const auto *from = reinterpret_cast<const uint8_t *>(&rsp.t);
    velmar_print_hex_bytes(from, shown);
  }
  return result;
}

int32_t velmar_common_qmi_req(const void *req, int32_t req_len, void *rsp, uint32_t *rsp_len) {
  VELMAR_LOG_LN("function entry ------------->");
  const int32_t result =
      velmar_extend_qmi_send_sync(VELMAR_REQUEST_ID_COMMON, req, req_len, rsp, rsp_len);
  VELMAR_LOG_LN("function exit <-------------");
  return result;
}

void velmar_qcril_qmi_client_common_empty_unsol_ind_cb(qmi_client_type /*handle*/,
                                                       unsigned int msg_id, void * /*ind_buf*/,
                                                       unsigned int /*ind_buf_len*/,
                                                       void * /*cb_data*/) {
  VELMAR_LOG_LN("msg_id %d", static_cast<int>(msg_id));
}

void velmar_cmn_test_nv_sync() {}

void velmar_cmn_test_get_sar_dsi() {}
