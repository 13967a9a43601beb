// The host transport's join: what a connecting client makes of the service's
// first move.
#include "platform/host/link/qmi_host_transport.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <thread>

namespace {

using rpk_qmi::Join;

constexpr uint32_t kService = 0x7e57;  // no real service: this test's own socket
constexpr int kNoAccept = -2;          // the service never accepts
constexpr int kClose = -1;             // the service accepts and closes at once

TEST(QmiHostTransport, AJoinIsDecidedByTheServicesFirstPacket) {
  const std::string path = rpk_qmi::service_socket_path(kService);
  struct Case {
    const char *name;
    int first_ctl;  // the control flag of the service's first packet, or kNoAccept/kClose
    Join expected;
  };
  const Case cases[] = {
      {"welcome", rpk_qmi::kCtlWelcome, Join::kJoined},
      {"closed at once", kClose, Join::kRefused},
      {"a response instead of a welcome", rpk_qmi::kCtlResponse, Join::kRefused},
      {"never accepted", kNoAccept, Join::kSilent},
  };
  for (const Case &c : cases) {
    unlink(path.c_str());
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    memcpy(addr.sun_path, path.c_str(), path.size() + 1);
    const int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0) << path;
    ASSERT_EQ(listen(listener, 4), 0);
    std::thread service([&] {
      if (c.first_ctl == kNoAccept) return;
      const int conn = accept(listener, nullptr, nullptr);
      uint8_t packet[rpk_qmi::kHeaderLen];
      rpk_qmi::put_header(packet, {static_cast<uint8_t>(c.first_ctl), 0, 0, 0});
      if (c.first_ctl != kClose) send(conn, packet, sizeof packet, MSG_NOSIGNAL);
      close(conn);
    });
    int fd = -1;
    EXPECT_EQ(rpk_qmi::join_service(kService, 200, &fd), c.expected) << c.name;
    EXPECT_EQ(fd >= 0, c.expected == Join::kJoined) << c.name;
    service.join();
    if (fd >= 0) close(fd);
    close(listener);
  }
  // The socket file of a service that is gone (a killed daemon's leftover).
  int fd = -1;
  EXPECT_EQ(rpk_qmi::join_service(kService, 200, &fd), Join::kNotListening);
  unlink(path.c_str());
}

}  // namespace
