// The control socket (<state dir>/sim-ctl.sock): a command-line call sends
// one JSON command as one packet and reads one JSON answer.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace rpk_sim {

std::string control_socket_path();

// Sends a command to the running daemon. False (with *error) when there is
// no daemon to ask or it did not answer within `timeout_ms`.
bool control_request(const nlohmann::json &command, nlohmann::json *answer, std::string *error,
                     int timeout_ms = 10000);

}  // namespace rpk_sim
