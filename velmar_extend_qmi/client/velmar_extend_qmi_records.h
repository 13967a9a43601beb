// The inner records carried in the Extend-QMI envelope's data. Wire formats:
// little-endian, sizes and offsets exact. Requests are zero-filled before use.
// Responses are copied (memcpy) into these structs, which relies on the host
// being little-endian like the modem.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

static_assert(std::endian::native == std::endian::little,
              "the records are copied to and from the wire as they lie in memory");

// NV store operations (request id 1).
inline constexpr uint32_t VELMAR_NV_STORE_OP_READ = 1;
inline constexpr uint32_t VELMAR_NV_STORE_OP_WRITE = 2;
inline constexpr uint32_t VELMAR_NV_STORE_OP_DELETE = 3;
inline constexpr uint32_t VELMAR_NV_STORE_OP_QCN_BACKUP = 4;
inline constexpr uint32_t VELMAR_NV_STORE_OP_QCN_RESTORE = 5;

inline constexpr size_t VELMAR_NV_STORE_DATA_MAX = 412;

// NV store request (request id 1); always sent whole, 428 bytes.
struct velmar_nv_store_req {
  uint32_t op;                             // VELMAR_NV_STORE_OP_*
  uint32_t arg;                            // NV item (read, write, delete); privacy flag
                                           // (backup); goldencopy flag (restore)
  uint32_t reserved;                       // 0
  uint32_t data_len;                       // write: bytes of data; 0 otherwise
  uint8_t data[VELMAR_NV_STORE_DATA_MAX];  // write: the item value
};
static_assert(sizeof(velmar_nv_store_req) == 428);
static_assert(offsetof(velmar_nv_store_req, arg) == 4);
static_assert(offsetof(velmar_nv_store_req, data_len) == 12);
static_assert(offsetof(velmar_nv_store_req, data) == 16);

// NV store response; the caller offers room for all 432 bytes.
struct velmar_nv_store_rsp {
  uint32_t reserved0;                      // not read
  uint32_t result;                         // 0 success, else the modem's NV status
  uint8_t reserved1[8];                    // not read
  int32_t data_len;                        // read: the item's length (may exceed the area)
  uint8_t data[VELMAR_NV_STORE_DATA_MAX];  // read: the item value
};
static_assert(sizeof(velmar_nv_store_rsp) == 432);
static_assert(offsetof(velmar_nv_store_rsp, result) == 4);
static_assert(offsetof(velmar_nv_store_rsp, data_len) == 16);
static_assert(offsetof(velmar_nv_store_rsp, data) == 20);

// NV/EFS operations (request id 2).
inline constexpr uint8_t VELMAR_NVEFS_OP_NV_READ = 1;
inline constexpr uint8_t VELMAR_NVEFS_OP_NV_WRITE = 2;
inline constexpr uint8_t VELMAR_NVEFS_OP_NV_DELETE = 3;
inline constexpr uint8_t VELMAR_NVEFS_OP_EFS_READ = 4;
inline constexpr uint8_t VELMAR_NVEFS_OP_EFS_WRITE = 5;
inline constexpr uint8_t VELMAR_NVEFS_OP_EFS_DELETE = 6;

inline constexpr size_t VELMAR_NVEFS_PATH_MAX = 71;
inline constexpr size_t VELMAR_NVEFS_DATA_MAX = 424;

// NV/EFS request (request id 2); always sent whole, 512 bytes.
struct velmar_nvefs_req {
  uint8_t op;                           // VELMAR_NVEFS_OP_*
  uint8_t sub_id;                       // subscription, 0 or 1
  uint16_t nv_id;                       // NV item number, 0..7232 (NV operations)
  uint8_t path_len;                     // bytes of path, no terminator (EFS operations)
  char path[VELMAR_NVEFS_PATH_MAX];     // EFS path, not necessarily terminated
  uint32_t data_len_all;                // NV write: data bytes; EFS write: file length
  uint32_t data_len_send;               // EFS write: bytes in this chunk
  uint32_t data_len_cur;                // EFS read/write: file offset of this chunk
  uint8_t data[VELMAR_NVEFS_DATA_MAX];  // NV write data or one EFS write chunk
};
static_assert(sizeof(velmar_nvefs_req) == 512);
static_assert(offsetof(velmar_nvefs_req, sub_id) == 1);
static_assert(offsetof(velmar_nvefs_req, nv_id) == 2);
static_assert(offsetof(velmar_nvefs_req, path_len) == 4);
static_assert(offsetof(velmar_nvefs_req, path) == 5);
static_assert(offsetof(velmar_nvefs_req, data_len_all) == 76);
static_assert(offsetof(velmar_nvefs_req, data_len_send) == 80);
static_assert(offsetof(velmar_nvefs_req, data_len_cur) == 84);
static_assert(offsetof(velmar_nvefs_req, data) == 88);

// NV/EFS response; the caller offers room for all 444 bytes.
struct velmar_nvefs_rsp {
  uint32_t reserved0;                   // not read
  uint32_t data_len_all;                // NV read: item length; EFS read: file length
  uint32_t data_len_send;               // EFS read: bytes in this chunk
  uint32_t reserved1;                   // not read
  int32_t result;                       // 0 success, else the modem's error
  uint8_t data[VELMAR_NVEFS_DATA_MAX];  // NV item value or one EFS read chunk
};
static_assert(sizeof(velmar_nvefs_rsp) == 444);
static_assert(offsetof(velmar_nvefs_rsp, data_len_all) == 4);
static_assert(offsetof(velmar_nvefs_rsp, data_len_send) == 8);
static_assert(offsetof(velmar_nvefs_rsp, result) == 16);
static_assert(offsetof(velmar_nvefs_rsp, data) == 20);

// Kinds of request id 4, told apart by the record's first word.
inline constexpr uint32_t VELMAR_COMMON_KIND_GPIO = 0;
inline constexpr uint32_t VELMAR_COMMON_KIND_TX_ANT = 1;
inline constexpr uint32_t VELMAR_COMMON_KIND_CMN = 2;
inline constexpr uint32_t VELMAR_COMMON_KIND_STATS_DEBUG = 20;
// Room offered for the response of any kind (its last 4 bytes are never
// filled).
inline constexpr uint32_t VELMAR_CMN_RSP_ROOM = 508;

// RF tests (request id 4, kinds 0 and 1); sent as 512 bytes, zero-filled. The
// modem keeps each setting in an EFS file; the response is not read.
inline constexpr size_t VELMAR_RF_GPIO_VALUES_MAX = 50;

struct velmar_rf_gpio_test_req {
  uint32_t kind;                               // VELMAR_COMMON_KIND_GPIO
  uint32_t reserved;                           // 0
  uint32_t count;                              // values given, even beyond those stored
  uint32_t values[VELMAR_RF_GPIO_VALUES_MAX];  // GPIO values, as given
  uint8_t unused[512 - 12 - 4 * VELMAR_RF_GPIO_VALUES_MAX];  // 0
};
static_assert(sizeof(velmar_rf_gpio_test_req) == 512);
static_assert(offsetof(velmar_rf_gpio_test_req, count) == 8);
static_assert(offsetof(velmar_rf_gpio_test_req, values) == 12);

struct velmar_rf_tx_test_req {
  uint32_t kind;             // VELMAR_COMMON_KIND_TX_ANT
  uint32_t reserved;         // 0
  uint32_t v_ant;            // 0 lower antenna, 1 upper antenna
  uint32_t v_sys;            // 0 gsm, 1 wcdma, 2 cdma, 3 tds, 4 lte
  uint64_t band_mask;        // bits 0..43 bands of v_sys; 44..63 extra LTE bands
  uint8_t unused[512 - 24];  // 0
};
static_assert(sizeof(velmar_rf_tx_test_req) == 512);
static_assert(offsetof(velmar_rf_tx_test_req, v_ant) == 8);
static_assert(offsetof(velmar_rf_tx_test_req, v_sys) == 12);
static_assert(offsetof(velmar_rf_tx_test_req, band_mask) == 16);

inline constexpr size_t VELMAR_CMN_VALUE_MAX = 496;
// The length bound of a common value. Deliberately looser than the value area:
// 497..499 bytes pass it and are stopped by the bounded copy instead.
inline constexpr uint32_t VELMAR_CMN_LEN_LIMIT = 500;

// Common request and response (request id 4, kind 2); sent as 512 bytes.
struct velmar_cmn_record {
  uint32_t kind;                    // VELMAR_COMMON_KIND_CMN; not read in a response
  int32_t result;                   // 0 in a request; response: 0 or the modem's error
  uint32_t t;                       // command type, echoed in the response
  uint32_t l;                       // bytes of v, below 500
  uint8_t v[VELMAR_CMN_VALUE_MAX];  // command value, or the returned value
};
static_assert(sizeof(velmar_cmn_record) == 512);
static_assert(offsetof(velmar_cmn_record, result) == 4);
static_assert(offsetof(velmar_cmn_record, t) == 8);
static_assert(offsetof(velmar_cmn_record, l) == 12);
static_assert(offsetof(velmar_cmn_record, v) == 16);
