// How the host's libmodemapi and the simulated modem's statistics endpoint
// meet: one Unix-domain SOCK_SEQPACKET socket in the host state directory, one
// connection per modem API client, welcomed (or refused) as a QMI service
// welcomes its clients. Every packet has the 7-byte header of
// qmi_host_transport.h (requests kCtlRequest, answers kCtlResponse with the
// request's txn, events kCtlIndication), then little-endian fields:
//
//   kMsgSetFeature   request  i32 a, i32 b, i32 c, i32 d
//                    answer   i32 result
//   kMsgGetStats     request  u32 sub, u32 number, u32 id_count, id_count x u32 id
//                    answer   i32 result, u32 id_num, u32 sub, u32 id, u32 data_len,
//                             then the data (data_len bytes, which may exceed what
//                             the caller's result can hold)
//   kIndEvent        event    i32 event, then the event's bytes
//   kIndStatus       event    i32 operational status
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/host/link/rpk_host.h"

namespace rpk_modem_api {

inline constexpr uint16_t kMsgSetFeature = 0x0001;
inline constexpr uint16_t kMsgGetStats = 0x0002;
inline constexpr uint16_t kIndEvent = 0x0100;
inline constexpr uint16_t kIndStatus = 0x0101;

inline constexpr size_t kSetFeatureReqLen = 16;
inline constexpr size_t kGetStatsReqHead = 12;  // before the id list
inline constexpr size_t kGetStatsRspHead = 20;  // before the data
// An answer's data must fit one packet with its header.
inline constexpr size_t kGetStatsDataMax = 0xFFFF - kGetStatsRspHead;

// <state dir>/modem-api.sock
inline std::string socket_path() { return rpk_host::state_dir() + "/modem-api.sock"; }

}  // namespace rpk_modem_api
