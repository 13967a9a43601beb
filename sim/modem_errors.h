// The result codes the simulated modem answers with, one table for all its
// services. Values follow the modem's own code spaces so a trace reads like
// one from a phone.
#pragma once

#include <cstdint>

namespace rpk_sim {

// Envelope-level results (TLV 0x01 of an Extend-QMI response; the error word
// of the SAR standard response): QMI error codes.
inline constexpr uint32_t kQmiErrNone = 0x0000;
inline constexpr uint32_t kQmiErrMalformedMsg = 0x0001;  // the request did not decode
inline constexpr uint32_t kQmiErrMissingArg = 0x0011;    // no data (data_valid 0)
inline constexpr uint32_t kQmiErrInvalidArg = 0x0030;    // a value out of its range
inline constexpr uint32_t kQmiErrNotSupported = 0x005E;  // unknown request id, kind or type

// NV store results (request ids 1 and 2, NV operations): NV status codes.
inline constexpr int32_t kNvDone = 0;
inline constexpr int32_t kNvBadCmd = 2;     // unknown NV operation
inline constexpr int32_t kNvFail = 4;       // the store could not be written, or no QCN
inline constexpr int32_t kNvNotActive = 5;  // the item has never been written
inline constexpr int32_t kNvBadParm = 6;    // item number, subscription or length out of range

// EFS results (request id 2, EFS operations): errno values of the modem's EFS.
inline constexpr int32_t kEfsNoEnt = 2;         // no such file
inline constexpr int32_t kEfsIo = 5;            // the file could not be stored
inline constexpr int32_t kEfsIsDir = 21;        // the path names a directory
inline constexpr int32_t kEfsInval = 22;        // bad path, offset or length; unknown operation
inline constexpr int32_t kEfsFBig = 27;         // larger than the modem keeps
inline constexpr int32_t kEfsNameTooLong = 36;  // path longer than the record carries

}  // namespace rpk_sim
