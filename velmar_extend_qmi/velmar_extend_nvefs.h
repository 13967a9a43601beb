// NV items and EFS files of the modem, through Extend-QMI request id 2.
// Every function logs its steps (function entry/exit and each check) and
// returns 0 or a code of common/velmar_status.h: the client's codes
// mapped to -101..-103, this layer's -104..-109, or the modem's own non-zero
// result unchanged. Nothing is retried.
#pragma once

#include <cstdint>

inline constexpr uint32_t VELMAR_NV_ID_MAX = 7232;         // highest NV item number
inline constexpr uint32_t VELMAR_NV_READ_BUF_SIZE = 365;   // bytes an NV read keeps
inline constexpr uint32_t VELMAR_EFS_READ_PATH_MAX = 71;   // one longer than write/delete
inline constexpr uint32_t VELMAR_EFS_WRITE_PATH_MAX = 70;  // also the delete limit
inline constexpr uint32_t VELMAR_EFS_CHUNK_MAX = 414;      // file bytes per write request
inline constexpr uint32_t VELMAR_EFS_FILE_MAX = 102410;    // largest file written or read
inline constexpr uint32_t VELMAR_EFS_REQUESTS_MAX = 300;   // requests of one read or write

// -1, -2, -3 become -101, -102, -103; anything else is returned as it is.
int32_t velmar_qmi_result_map(int32_t old_result);

// Reads NV item `nv_id` of subscription `sub` (0 or 1). *buf_len is the room
// in buf on entry and the bytes copied on success (the item length, cut to the
// room). An item of length 0 fails with -108; nv_id above 7232 with -109.
int32_t velmar_nv_read(uint32_t sub, uint32_t nv_id, uint8_t *buf, uint32_t *buf_len);

// Writes `len` bytes (1..424, else -108) of data as NV item `nv_id`.
int32_t velmar_nv_write(uint32_t sub, uint32_t nv_id, const uint8_t *data, uint32_t len);

int32_t velmar_nv_delete(uint32_t sub, uint32_t nv_id);

// Reads the EFS file `path` (path_len 1..71 bytes, no terminator needed) in
// chunks into buf. *buf_len is the room on entry and the bytes placed in buf on
// return. A file larger than the room is cut silently (result 0); reading
// stops at 300 requests or 102410 bytes with what it has. A failed chunk ends
// the read with what was already copied left in buf.
int32_t velmar_efs_read(uint32_t sub, const char *path, uint32_t path_len, uint8_t *buf,
                        uint32_t *buf_len);

// Writes buf_len bytes (1..102410) of buf as the whole file `path` (path_len
// 1..70), 414 bytes a request. A failed chunk ends the write; the chunks
// already sent stay written.
int32_t velmar_efs_write(uint32_t sub, const char *path, int32_t path_len, const uint8_t *buf,
                         uint32_t buf_len);

// Deletes the EFS file `path` (path_len 1..70).
int32_t velmar_efs_delete(uint32_t sub, const char *path, uint32_t path_len);
