#include "velmar_extend_qmi/velmar_extend_nvefs.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "common/velmar_log.h"
#include "common/velmar_status.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_client.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_records.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace {

static_assert(VELMAR_EFS_CHUNK_MAX <= VELMAR_NVEFS_DATA_MAX);
static_assert(VELMAR_EFS_READ_PATH_MAX <= VELMAR_NVEFS_PATH_MAX);

// Logs "function entry" on construction and "function exit" when the scope
// ends, so every return path of a traced function closes its trace.
class fn_trace {
 public:
  explicit fn_trace(const char *fn) : fn_(fn) {
    VELMAR_LOGF_LN(fn_, "function entry ------------->");
  }
  ~fn_trace() { VELMAR_LOGF_LN(fn_, "function exit <-------------"); }
  fn_trace(const fn_trace &) = delete;
  fn_trace &operator=(const fn_trace &) = delete;

 private:
  const char *fn_;
};

constexpr const char *kSendFail = "velmar_extend_qmi_send_sync fail";

// One request id 2 exchange under `fn`: the whole 512-byte record out, 444
// bytes of room back (rsp is zero unless the transport succeeded, and zero
// past what the modem sent). Logs the outcome, `send_fail` for a failed
// transport, and returns 0 when both the transport and the modem succeeded,
// else the code to return. *carried, when asked for, is how many bytes of
// rsp.data the answer really held: data past it was never sent.
int32_t exchange(const char *fn, const velmar_nvefs_req &req, velmar_nvefs_rsp &rsp,
                 const char *send_fail = kSendFail, uint32_t *carried = nullptr) {
  rsp = {};
  uint32_t room = sizeof rsp;
  const int32_t mapped = velmar_qmi_result_map(
      velmar_extend_qmi_send_sync(VELMAR_REQUEST_ID_EFS, &req, sizeof req, &rsp, &room));
  constexpr uint32_t kDataAt = offsetof(velmar_nvefs_rsp, data);
  if (carried != nullptr) *carried = room > kDataAt ? room - kDataAt : 0;
  VELMAR_LOGF_LN(fn, "result = %d, rsp.result = %d", mapped, rsp.result);
  if (mapped != VELMAR_OK) {
    VELMAR_LOGF_LN(fn, "%s", send_fail);
    return mapped;
  }
  if (rsp.result != VELMAR_OK) {
    VELMAR_LOGF_LN(fn, "qmi response fail");
    return rsp.result;
  }
  return VELMAR_OK;
}

velmar_nvefs_req nv_record(uint8_t op, uint32_t sub, uint32_t nv_id) {
  velmar_nvefs_req req{};
  req.op = op;
  req.sub_id = static_cast<uint8_t>(sub);
  req.nv_id = static_cast<uint16_t>(nv_id);
  return req;
}

bool nv_id_in_range(const char *fn, uint32_t nv_id) {
  if (nv_id <= VELMAR_NV_ID_MAX) return true;
  VELMAR_LOGF_LN(fn, "nv_id is out range(%d)", VELMAR_NV_ID_MAX);
  return false;
}

// The checks every EFS function makes first, in this order.
int32_t check_efs_target(const char *fn, uint32_t sub, const char *path, int64_t path_len,
                         uint32_t path_max) {
  if (sub > 1) {
    VELMAR_LOGF_LN(fn, "sub invalid");
    return VELMAR_ERR_NVEFS_SUB;
  }
  if (path == nullptr) {
    VELMAR_LOGF_LN(fn, "efs_path is null");
    return VELMAR_ERR_NVEFS_PATH_NULL;
  }
  if (path_len < 1 || path_len > path_max) {
    VELMAR_LOGF_LN(fn, "len invalid");
    return VELMAR_ERR_NVEFS_PATH_LEN;
  }
  return VELMAR_OK;
}

// The record of an EFS operation on a checked path, with the path logged.
velmar_nvefs_req efs_record(const char *fn, uint8_t op, uint32_t sub, const char *path,
                            uint32_t path_len) {
  // The log shows at most 70 characters, also of a 71-character read path.
  char shown[VELMAR_NVEFS_PATH_MAX + 1] = {};
  memcpy(shown, path, path_len);
  shown[VELMAR_EFS_WRITE_PATH_MAX] = '\0';
  VELMAR_LOGF_LN(fn, "path_value: %s", shown);

  velmar_nvefs_req req{};
  req.op = op;
  req.sub_id = static_cast<uint8_t>(sub);
  req.path_len = static_cast<uint8_t>(path_len);
  memcpy(req.path, path, path_len);
  return req;
}

int32_t efs_read_chunks(const char *fn, velmar_nvefs_req &req, uint8_t *buf, uint32_t *buf_len) {
  const uint32_t room = *buf_len;
  uint32_t recv = 0;
  uint32_t count = 0;
  velmar_nvefs_rsp rsp;
  for (;;) {
    const uint32_t cur = recv;
    req.data_len_cur = cur;
    uint32_t carried = 0;
    const int32_t outcome =
        exchange(fn, req, rsp, "velmar_extend_qmi_send_sync fail, ABORT", &carried);
    if (outcome != VELMAR_OK) return outcome;

    recv += rsp.data_len_send;
    ++count;
    VELMAR_LOGF_LN(fn,
                   "data_len_all = %d, data_len_send = %d, data_len_recv = %d, read_count = %d, "
                   "data_len_cur = %d",
                   rsp.data_len_all, rsp.data_len_send, recv, count, cur);
    if (static_cast<int32_t>(rsp.data_len_send) <= 0) {
      VELMAR_LOGF_LN(fn, "abort, data_len_send <= 0");
      return VELMAR_ERR_NVEFS_LEN;
    }
    // The chunk must lie inside what the answer carried (at most the 424 bytes
    // we offered room for): bytes past it were never sent.
    if (rsp.data_len_send > carried) {
      VELMAR_LOGF_LN(fn, "abort, data_len_send > %d", static_cast<int>(carried));
      return VELMAR_ERR_NVEFS_LEN;
    }

    if (room <= recv) {
      // The buffer is full: keep what fits and report success.
      *buf_len = room;
      if (room > cur) {
        memcpy(buf + cur, rsp.data, room - cur);
        VELMAR_LOGF_LN(fn, "abort, buf_len <= data_len_recv");
      } else {
        VELMAR_LOGF_LN(fn, "errro, abort, buf_len <= req.data_len_cur");
      }
      return VELMAR_OK;
    }
    *buf_len = recv;
    memcpy(buf + cur, rsp.data, rsp.data_len_send);
    if (count >= VELMAR_EFS_REQUESTS_MAX || rsp.data_len_all <= recv ||
        recv >= VELMAR_EFS_FILE_MAX) {
      return VELMAR_OK;
    }
  }
}

int32_t efs_write_chunks(const char *fn, velmar_nvefs_req &req, const uint8_t *buf,
                         uint32_t buf_len) {
  uint32_t sent = 0;
  uint32_t count = 0;
  velmar_nvefs_rsp rsp;
  for (;;) {
    const uint32_t cur = sent;
    req.data_len_cur = cur;
    const uint32_t left = buf_len - sent;
    VELMAR_LOGF_LN(fn, "left_num(%d)", left);
    const uint32_t send_num = std::min(left, VELMAR_EFS_CHUNK_MAX);
    VELMAR_LOGF_LN(fn, "send_num(%d)", send_num);
    req.data_len_send = send_num;
    memcpy(req.data, buf + sent, send_num);
    // A short last chunk must not carry the tail of the previous one.
    memset(req.data + send_num, 0, sizeof req.data - send_num);

    const int32_t outcome = exchange(fn, req, rsp);
    if (outcome != VELMAR_OK) return outcome;

    ++count;
    sent += send_num;
    VELMAR_LOGF_LN(fn,
                   "data_len_all = %d, data_len_send = %d, data_len_recv = %d, send_count = %d, "
                   "data_len_cur = %d",
                   req.data_len_all, send_num, sent, count, cur);
    if (count >= VELMAR_EFS_REQUESTS_MAX || sent >= buf_len) return VELMAR_OK;
  }
}

}  // namespace

int32_t velmar_qmi_result_map(int32_t old_result) {
  int32_t new_result = old_result;
  switch (old_result) {
    case VELMAR_ERR_QMI_PARAM:
      new_result = VELMAR_ERR_NVEFS_PARAM;
      break;
    case VELMAR_ERR_QMI_NO_CLIENT:
      new_result = VELMAR_ERR_NVEFS_NO_CLIENT;
      break;
    case VELMAR_ERR_QMI_SEND:
      new_result = VELMAR_ERR_NVEFS_SEND;
      break;
    default:
      break;
  }
  VELMAR_LOG_LN("velmar_qmi_result_map, old_result %d, new_result %d", old_result, new_result);
  return new_result;
}

int32_t velmar_nv_read(uint32_t sub, uint32_t nv_id, uint8_t *buf, uint32_t *buf_len) {
  assert(buf != nullptr && buf_len != nullptr);
  const char *fn = __func__;
  fn_trace trace(fn);
  VELMAR_LOG_LN("velmar_nv_read, sub_id %d, nv_id: %d", sub, nv_id);
  if (!nv_id_in_range(fn, nv_id)) return VELMAR_ERR_NVEFS_NV_ID;
  VELMAR_LOG_LN("buf_len: %d", *buf_len);

  const velmar_nvefs_req req = nv_record(VELMAR_NVEFS_OP_NV_READ, sub, nv_id);
  velmar_nvefs_rsp rsp;
  uint32_t carried = 0;
  const int32_t outcome = exchange(fn, req, rsp, kSendFail, &carried);
  if (outcome != VELMAR_OK) return outcome;

  VELMAR_LOG_LN("rsp.data_len_all = %d", rsp.data_len_all);
  if (rsp.data_len_all == 0) {
    VELMAR_LOG_LN("rsp.data_len_all is invalid");
    return VELMAR_ERR_NVEFS_LEN;
  }
  const uint32_t n = std::min({rsp.data_len_all, *buf_len, static_cast<uint32_t>(sizeof rsp.data)});
  // The value must lie inside what the answer carried: bytes past it were
  // never sent.
  if (n > carried) {
    VELMAR_LOG_LN("rsp.data_len_all(%d) is more than the %d data bytes received", rsp.data_len_all,
                  carried);
    return VELMAR_ERR_NVEFS_LEN;
  }
  memcpy(buf, rsp.data, n);
  *buf_len = n;
  return VELMAR_OK;
}

int32_t velmar_nv_write(uint32_t sub, uint32_t nv_id, const uint8_t *data, uint32_t len) {
  assert(data != nullptr);
  const char *fn = __func__;
  fn_trace trace(fn);
  VELMAR_LOG_LN("velmar_nv_write, sub_id %d, nv_id: %d, buf_len: %d", sub, nv_id, len);
  if (!nv_id_in_range(fn, nv_id)) return VELMAR_ERR_NVEFS_NV_ID;
  if (len < 1 || len > VELMAR_NVEFS_DATA_MAX) {
    VELMAR_LOG_LN("buf_len is invalid");
    return VELMAR_ERR_NVEFS_LEN;
  }

  velmar_nvefs_req req = nv_record(VELMAR_NVEFS_OP_NV_WRITE, sub, nv_id);
  req.data_len_all = len;
  memcpy(req.data, data, len);
  velmar_nvefs_rsp rsp;
  return exchange(fn, req, rsp);
}

int32_t velmar_nv_delete(uint32_t sub, uint32_t nv_id) {
  const char *fn = __func__;
  fn_trace trace(fn);
  VELMAR_LOG_LN("velmar_nv_delete, sub_id %d, nv_id: %d", sub, nv_id);
  if (!nv_id_in_range(fn, nv_id)) return VELMAR_ERR_NVEFS_NV_ID;

  const velmar_nvefs_req req = nv_record(VELMAR_NVEFS_OP_NV_DELETE, sub, nv_id);
  velmar_nvefs_rsp rsp;
  return exchange(fn, req, rsp);
}

int32_t velmar_efs_read(uint32_t sub, const char *path, uint32_t path_len, uint8_t *buf,
                        uint32_t *buf_len) {
  const char *fn = __func__;
  fn_trace trace(fn);
  VELMAR_LOG_LN("velmar_efs_read, sub_id %d, path_len: %d", sub, path_len);
  int32_t result = check_efs_target(fn, sub, path, path_len, VELMAR_EFS_READ_PATH_MAX);
  if (result != VELMAR_OK) return result;
  if (buf == nullptr) {
    VELMAR_LOG_LN("buf is null");
    return VELMAR_ERR_NVEFS_BUF_NULL;
  }
  if (buf_len == nullptr) {
    VELMAR_LOG_LN("p_buf_len is null");
    return VELMAR_ERR_NVEFS_LEN;
  }
  VELMAR_LOG_LN("buf_len: %d", *buf_len);
  if (*buf_len == 0) {
    VELMAR_LOG_LN("buf_len is invalid");
    return VELMAR_ERR_NVEFS_LEN;
  }

  velmar_nvefs_req req = efs_record(fn, VELMAR_NVEFS_OP_EFS_READ, sub, path, path_len);
  return efs_read_chunks(fn, req, buf, buf_len);
}

int32_t velmar_efs_write(uint32_t sub, const char *path, int32_t path_len, const uint8_t *buf,
                         uint32_t buf_len) {
  const char *fn = __func__;
  fn_trace trace(fn);
  VELMAR_LOG_LN("velmar_efs_write, sub_id %d, path_len: %d, buf_len: %d", sub, path_len, buf_len);
  int32_t result = check_efs_target(fn, sub, path, path_len, VELMAR_EFS_WRITE_PATH_MAX);
  if (result != VELMAR_OK) return result;
  if (buf == nullptr) {
    VELMAR_LOG_LN("buf is null");
    return VELMAR_ERR_NVEFS_BUF_NULL;
  }
  if (buf_len < 1 || buf_len > VELMAR_EFS_FILE_MAX) {
    VELMAR_LOG_LN("buf_len is invalid");
    return VELMAR_ERR_NVEFS_LEN;
  }

  velmar_nvefs_req req =
      efs_record(fn, VELMAR_NVEFS_OP_EFS_WRITE, sub, path, static_cast<uint32_t>(path_len));
  req.data_len_all = buf_len;
  return efs_write_chunks(fn, req, buf, buf_len);
}

int32_t velmar_efs_delete(uint32_t sub, const char *path, uint32_t path_len) {
  const char *fn = __func__;
  fn_trace trace(fn);
  VELMAR_LOG_LN("velmar_efs_delete, sub_id %d, path_len: %d", sub, path_len);
  int32_t result = check_efs_target(fn, sub, path, path_len, VELMAR_EFS_WRITE_PATH_MAX);
  if (result != VELMAR_OK) return result;

  const velmar_nvefs_req req = efs_record(fn, VELMAR_NVEFS_OP_EFS_DELETE, sub, path, path_len);
  velmar_nvefs_rsp rsp;
  return exchange(fn, req, rsp);
}
