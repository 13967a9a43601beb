#include "platform/host/link/diag_host_transport.h"

#include "platform/host/link/rpk_host.h"

namespace rpk_diag {

std::string diag_socket_path() { return rpk_host::state_dir() + "/diag.sock"; }

}  // namespace rpk_diag
