// Every status code the modem-access layers return, named once. 0 is success;
// any other value not listed here is the modem's own error, passed through.
#pragma once

#include <cstdint>

inline constexpr int32_t VELMAR_OK = 0;

// Extend-QMI client (velmar_extend_qmi_send_sync and friends).
inline constexpr int32_t VELMAR_ERR_QMI_PARAM = -1;      // null buffer, or a length over 512
inline constexpr int32_t VELMAR_ERR_QMI_NO_CLIENT = -2;  // the client could not be opened
inline constexpr int32_t VELMAR_ERR_QMI_SEND = -3;       // platform send failed, or service error

// NV/EFS layer: the client's codes moved out of their range, plus its own.
inline constexpr int32_t VELMAR_ERR_NVEFS_PARAM = -101;      // mapped from -1
inline constexpr int32_t VELMAR_ERR_NVEFS_NO_CLIENT = -102;  // mapped from -2
inline constexpr int32_t VELMAR_ERR_NVEFS_SEND = -103;       // mapped from -3
inline constexpr int32_t VELMAR_ERR_NVEFS_SUB = -104;        // subscription other than 0 or 1
inline constexpr int32_t VELMAR_ERR_NVEFS_PATH_NULL = -105;  // no EFS path
inline constexpr int32_t VELMAR_ERR_NVEFS_PATH_LEN = -106;   // EFS path length out of range
inline constexpr int32_t VELMAR_ERR_NVEFS_BUF_NULL = -107;   // no data buffer
// Missing or bad data length, an empty read answer, or an empty NV item.
inline constexpr int32_t VELMAR_ERR_NVEFS_LEN = -108;
inline constexpr int32_t VELMAR_ERR_NVEFS_NV_ID = -109;  // NV item number above 7232

// An NV item longer than g_nv_data_buf: only its first 400 bytes were kept.
inline constexpr int32_t VELMAR_ERR_NV_TOO_LONG = 0x0FFFF001;

// A command line with the wrong number of arguments (printed as 268431370).
inline constexpr int32_t VELMAR_ERR_ARGC = 0x0FFFF00A;
