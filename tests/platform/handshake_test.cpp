// The link's handshake: what a connecting client makes of the endpoint's
// first move.
#include "platform/host/link/handshake.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <thread>
#include <vector>

#include "platform/host/link/rpk_host.h"

namespace {

using rpk_link::Join;

TEST(Handshake, AJoinIsDecidedByTheEndpointsFirstPacket) {
  const std::string path = rpk_host::state_dir() + "/handshake-test.sock";
  const std::vector<uint8_t> welcome(rpk_link::kWelcome.begin(), rpk_link::kWelcome.end());
  std::vector<uint8_t> longer = welcome;
  longer.push_back(0);
  struct Case {
    const char *name;
    int type;
    bool accept;
    std::vector<uint8_t> first;  // empty: closed without a packet
    Join expected;
  };
  const Case cases[] = {
      {"welcome", SOCK_SEQPACKET, true, welcome, Join::kJoined},
      {"welcome on a stream", SOCK_STREAM, true, welcome, Join::kJoined},
      {"closed at once", SOCK_SEQPACKET, true, {}, Join::kRefused},
      {"a QMI response instead", SOCK_SEQPACKET, true, {2, 1, 0, 2, 0, 0, 0}, Join::kRefused},
      {"a longer packet", SOCK_SEQPACKET, true, longer, Join::kRefused},
      {"never accepted", SOCK_SEQPACKET, false, {}, Join::kSilent},
  };
  for (const Case &c : cases) {
    unlink(path.c_str());
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    memcpy(addr.sun_path, path.c_str(), path.size() + 1);
    const int listener = socket(AF_UNIX, c.type | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0) << path;
    ASSERT_EQ(listen(listener, 4), 0);
    std::thread endpoint([&] {
      if (!c.accept) return;
      const int conn = accept(listener, nullptr, nullptr);
      if (!c.first.empty()) send(conn, c.first.data(), c.first.size(), MSG_NOSIGNAL);
      close(conn);
    });
    int fd = -1;
    EXPECT_EQ(rpk_link::join(path, 200, &fd, c.type), c.expected) << c.name;
    EXPECT_EQ(fd >= 0, c.expected == Join::kJoined) << c.name;
    endpoint.join();
    if (fd >= 0) close(fd);
    close(listener);
  }
  // The socket file of an endpoint that is gone (a killed daemon's leftover).
  int fd = -1;
  EXPECT_EQ(rpk_link::join(path, 200, &fd), Join::kNotListening);
  EXPECT_EQ(fd, -1);
  unlink(path.c_str());
}

}  // namespace
