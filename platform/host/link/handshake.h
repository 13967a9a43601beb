// How a host client and an endpoint of the simulated modem meet on a
// Unix-domain socket of the state directory. The endpoint opens every
// connection it takes on with the welcome packet and refuses one by closing it
// before any packet. The client counts as joined only once welcomed, so a
// service that is absent, refusing or hung is told apart from one that is up.
// Every host library (QMI, diag, modem API) and every endpoint of the
// simulated modem uses this one handshake.
#pragma once

#include <sys/socket.h>

#include <array>
#include <cstdint>
#include <string>

namespace rpk_link {

// A bare QMI-shaped header with the host-only control flag 0x80 and nothing
// else, so no channel's reader mistakes it for a message.
inline constexpr std::array<uint8_t, 7> kWelcome = {0x80, 0, 0, 0, 0, 0, 0};

enum class Join {
  kJoined,        // connected and welcomed
  kNotListening,  // no socket file, or nobody listens there
  kRefused,       // closed (or something else said) instead of the welcome
  kSilent,        // no welcome within the wait
};

// Connects to the endpoint at `socket_path` and waits up to wait_ms for its
// welcome. *fd is the connection when kJoined, else -1 (nothing is left open).
Join join(const std::string &socket_path, int wait_ms, int *fd, int socket_type = SOCK_SEQPACKET);

}  // namespace rpk_link
