// What the benchmarks against the simulated modem share: a private state
// directory with a daemon of its own, whole rpk processes as a user runs them,
// and the floor they are measured against (bare socket round trips).
#pragma once

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

extern char **environ;

namespace rpk_bench {

// Points the platform at a fresh state directory before the first request;
// returns its path.
inline std::string use_private_state_dir() {
  char tmpl[] = "/tmp/rpk-bench-XXXXXX";
  if (mkdtemp(tmpl) == nullptr) {
    perror("mkdtemp");
    exit(1);
  }
  setenv("RPK_SIM_DIR", tmpl, 1);
  return tmpl;
}

// Stops the daemon of a state directory and removes it; true when both worked.
inline bool drop_state_dir(const std::string &dir, const char *sim_binary) {
  const std::string stop =
      "RPK_SIM_DIR='" + dir + "' '" + sim_binary + "' stop >/dev/null 2>&1; rm -rf '" + dir + "'";
  return system(stop.c_str()) == 0;
}

// One process per iteration, stdout to /dev/null: process start, session
// open and the request, as a user pays for them.
inline void run_processes(benchmark::State &state, const std::vector<const char *> &args) {
  std::vector<char *> argv;
  for (const char *a : args) argv.push_back(const_cast<char *>(a));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  for (auto _ : state) {
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) {
      state.SkipWithError("cannot start rpk");
      break;
    }
    int status = 0;
    waitpid(pid, &status, 0);
  }
  posix_spawn_file_actions_destroy(&actions);
}

// The floor: `trips` round trips of a `size`-byte packet to an echoing thread
// per iteration.
inline void socket_round_trips(benchmark::State &state, int64_t trips, size_t size) {
  int fds[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds) != 0) {
    state.SkipWithError("socketpair failed");
    return;
  }
  std::thread echo([fd = fds[1], size] {
    std::vector<uint8_t> buf(size);
    ssize_t n;
    while ((n = recv(fd, buf.data(), buf.size(), 0)) > 0) send(fd, buf.data(), size_t(n), 0);
  });
  std::vector<uint8_t> out(size), in(size);
  for (auto _ : state) {
    for (int64_t i = 0; i < trips; ++i) {
      send(fds[0], out.data(), out.size(), 0);
      recv(fds[0], in.data(), in.size(), 0);
    }
  }
  shutdown(fds[0], SHUT_RDWR);
  echo.join();
  close(fds[0]);
  close(fds[1]);
}

}  // namespace rpk_bench
