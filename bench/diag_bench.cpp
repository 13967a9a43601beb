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
#include "bench/sim_bench_support.h"
#include "velmar_extend_qmi/velmar_diag_send.h"

namespace {

// Each with-result send leaves a wait thread behind for up to 100 ms: a fixed
// count keeps their number bounded.
constexpr int kSends = 300;
constexpr int kProcesses = 30;

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
  rpk_bench::run_processes(state, {RPK_BENCH_RPK, "5", "0", "0", "0", "3000", "0x1D"});
}

// The floor: one small request and its answer.
void BM_SocketRoundTrip(benchmark::State &state) { rpk_bench::socket_round_trips(state, 1, 9); }

BENCHMARK(BM_DiagCallbackSend)->Iterations(kSends)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DiagDciSend)->Iterations(kSends)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DiagCallbackProcess)->Iterations(kProcesses)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SocketRoundTrip)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char **argv) {
  const std::string state_dir = rpk_bench::use_private_state_dir();
  // Started before the clock runs: the first send would otherwise pay for it.
  if (system("'" RPK_BENCH_SIM "' start >/dev/null 2>&1") != 0) return 1;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return rpk_bench::drop_state_dir(state_dir, RPK_BENCH_SIM) ? 0 : 1;
}
