// Diag round trips against the simulated modem, beside their floor: a bare
// round trip of a small packet on a Unix SOCK_SEQPACKET socket pair answered
// by an echo thread.
//
//   rpk_diag_bench [--benchmark_filter=...]
//
// In-process sends open and close a library session each (connection, reader
// thread, registration) as the command does; the process benchmark is
// `rpk 5 0 0 0 3000 0x1D` as a user runs it. Runs its own simulated modem in
// a fresh state directory and stops it at the end.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "bench/quiet_stdout.h"
#include "velmar_extend_qmi/velmar_diag_send.h"

extern char **environ;

namespace {

// Each with-result send leaves a wait thread behind for up to 100 ms: a fixed
// count keeps their number bounded.
constexpr int kSends = 300;
constexpr int kProcesses = 30;

std::string g_state_dir;

void use_private_state_dir() {
  char tmpl[] = "/tmp/rpk-bench-XXXXXX";
  if (mkdtemp(tmpl) == nullptr) {
    perror("mkdtemp");
    exit(1);
  }
  g_state_dir = tmpl;
  setenv("RPK_SIM_DIR", tmpl, 1);
}

using Sender = int (*)(const uint8_t *, int32_t, uint8_t *, int32_t *, int32_t);

void send_loop(benchmark::State &state, Sender send) {
  const uint8_t req[] = {0x1D};
  std::vector<uint8_t> reply(10240);
  quiet_stdout quiet;
  for (auto _ : state) {
    int32_t len = 10240;
    if (send(req, 1, reply.data(), &len, 3000) != 0 || len != 9) {
      state.SkipWithError("no timestamp came back");
      break;
    }
  }
  velmar_diag_wait_for_wait_thread();
}

void BM_DiagCallbackSend(benchmark::State &state) {
  send_loop(state, velmar_diag_cmd_send_with_result_by_callback_mode);
}

void BM_DiagDciSend(benchmark::State &state) {
  send_loop(state, velmar_diag_cmd_send_with_result_by_dci_mode);
}

void BM_DiagCallbackProcess(benchmark::State &state) {
  const char *argv[] = {RPK_BENCH_RPK, "5", "0", "0", "0", "3000", "0x1D", nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  for (auto _ : state) {
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], &actions, nullptr, const_cast<char **>(argv), environ) != 0) {
      state.SkipWithError("cannot start rpk");
      break;
    }
    int status = 0;
    waitpid(pid, &status, 0);
  }
  posix_spawn_file_actions_destroy(&actions);
}

// The floor: one small request and its answer.
void BM_SocketRoundTrip(benchmark::State &state) {
  int fds[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds) != 0) {
    state.SkipWithError("socketpair failed");
    return;
  }
  std::thread echo([fd = fds[1]] {
    uint8_t buf[64];
    ssize_t n;
    while ((n = recv(fd, buf, sizeof buf, 0)) > 0) send(fd, buf, static_cast<size_t>(n), 0);
  });
  uint8_t out[9] = {0x01, 0, 0, 0, 0, 0, 0, 0, 0x1D};
  uint8_t in[64];
  for (auto _ : state) {
    send(fds[0], out, sizeof out, 0);
    recv(fds[0], in, sizeof in, 0);
  }
  shutdown(fds[0], SHUT_RDWR);
  echo.join();
  close(fds[0]);
  close(fds[1]);
}

BENCHMARK(BM_DiagCallbackSend)->Iterations(kSends)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DiagDciSend)->Iterations(kSends)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DiagCallbackProcess)->Iterations(kProcesses)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SocketRoundTrip)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char **argv) {
  use_private_state_dir();
  // Started before the clock runs: the first send would otherwise pay for it.
  if (system("'" RPK_BENCH_SIM "' start >/dev/null 2>&1") != 0) return 1;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  const std::string stop = "RPK_SIM_DIR='" + g_state_dir +
                           "' '" RPK_BENCH_SIM "' stop >/dev/null 2>&1; rm -rf '" + g_state_dir +
                           "'";
  return system(stop.c_str()) == 0 ? 0 : 1;
}
