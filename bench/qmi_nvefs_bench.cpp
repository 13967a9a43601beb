// Extend-QMI costs against the simulated modem, each beside its floor: the
// same number of bare round trips of the same packet sizes on a Unix
// SOCK_SEQPACKET socket pair answered by an echo thread, and for the EFS
// write also one durable atomic write of the whole file.
//
//   rpk_qmi_bench [--benchmark_filter=...]
//
// Runs its own simulated modem in a fresh state directory and stops it at the
// end. The commands print their traces; they go to /dev/null here. The run
// ends with each cost against its floor, the best of five shuffled
// repetitions each.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "bench/best_run_reporter.h"
#include "bench/quiet_stdout.h"
#include "bench/sim_bench_support.h"
#include "front/velmar_test_nvefs.h"
#include "platform/host/link/rpk_host.h"
#include "velmar_extend_qmi/velmar_extend_nvefs.h"

namespace {

constexpr uint32_t kFileLen = VELMAR_EFS_FILE_MAX;
constexpr int kFileRequests = (kFileLen + VELMAR_EFS_CHUNK_MAX - 1) / VELMAR_EFS_CHUNK_MAX;
// A full Extend-QMI message either way: 7-byte header and 529 bytes of TLVs.
constexpr size_t kPacket = 7 + 529;
constexpr char kPath[] = "/nv/item_files/rpk_bench/file";

int32_t nv_read_command() {
  char a0[] = "rpk", a1[] = "4", a2[] = "1", a3[] = "0", a4[] = "550";
  char *argv[] = {a0, a1, a2, a3, a4, nullptr};
  return velmar_nvefs_test_nv_read(5, argv);
}

// One NV read command in this process, session already open.
void BM_NvReadCommand(benchmark::State &state) {
  quiet_stdout quiet;
  if (nv_read_command() != 0) state.SkipWithError("NV item 550 cannot be read");
  for (auto _ : state) benchmark::DoNotOptimize(nv_read_command());
}

// `rpk 4 1 0 550` as a user runs it: process start, session open, one request.
void BM_NvReadProcess(benchmark::State &state) {
  rpk_bench::run_processes(state, {RPK_BENCH_RPK, "4", "1", "0", "550"});
}

std::vector<uint8_t> file_bytes() {
  std::vector<uint8_t> data(kFileLen);
  for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>(1 + i % 251);
  return data;
}

void BM_EfsWrite(benchmark::State &state) {
  const std::vector<uint8_t> data = file_bytes();
  quiet_stdout quiet;
  for (auto _ : state) {
    if (velmar_efs_write(0, kPath, sizeof kPath - 1, data.data(), kFileLen) != 0) {
      state.SkipWithError("EFS write failed");
      break;
    }
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kFileLen);
}

void BM_EfsRead(benchmark::State &state) {
  const std::vector<uint8_t> data = file_bytes();
  std::vector<uint8_t> back(kFileLen);
  quiet_stdout quiet;
  if (velmar_efs_write(0, kPath, sizeof kPath - 1, data.data(), kFileLen) != 0) {
    state.SkipWithError("EFS write failed");
  }
  for (auto _ : state) {
    uint32_t len = kFileLen;
    if (velmar_efs_read(0, kPath, sizeof kPath - 1, back.data(), &len) != 0 || len != kFileLen) {
      state.SkipWithError("EFS read failed");
      break;
    }
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kFileLen);
  if (back != data) state.SkipWithError("EFS read returned other bytes");
}

// The other part of the EFS write's floor: the file written once, durably and
// atomically, as the simulated modem stores it.
void BM_DurableFileWrite(benchmark::State &state) {
  const std::vector<uint8_t> data = file_bytes();
  const std::string path = std::string(getenv("RPK_SIM_DIR")) + "/durable_floor.bin";
  const std::string_view bytes(reinterpret_cast<const char *>(data.data()), data.size());
  for (auto _ : state) {
    if (!rpk_host::write_file_atomic(path, bytes)) {
      state.SkipWithError("cannot write the file");
      break;
    }
  }
  unlink(path.c_str());
}

// The floor: state.range(0) request/response pairs of full messages.
void BM_SocketRoundTrips(benchmark::State &state) {
  rpk_bench::socket_round_trips(state, state.range(0), kPacket);
}

BENCHMARK(BM_NvReadCommand)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_NvReadProcess)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SocketRoundTrips)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_EfsWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EfsRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SocketRoundTrips)->Arg(kFileRequests)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DurableFileWrite)->Unit(benchmark::kMillisecond);

// The costs against their floors: an NV read against one bare round trip,
// and the EFS write against twice its round trips plus one durable write.
void print_ratios(const best_run_reporter &best) {
  const double trip = best.seconds("BM_SocketRoundTrips/1");
  const double trips = best.seconds("BM_SocketRoundTrips/" + std::to_string(kFileRequests));
  const double durable = best.seconds("BM_DurableFileWrite");
  printf("\nbest time / floor:\n");
  if (const double nv = best.seconds("BM_NvReadCommand"); nv > 0 && trip > 0) {
    printf("  NV read %.1f us, bare round trip %.1f us\n", nv * 1e6, trip * 1e6);
    print_ratio("NV read / round trip", nv / trip, 3, true);
  }
  if (const double efs = best.seconds("BM_EfsWrite"); efs > 0 && trips > 0 && durable > 0) {
    printf("  EFS write %.2f ms, %d round trips %.2f ms, durable write %.2f ms\n", efs * 1e3,
           kFileRequests, trips * 1e3, durable * 1e3);
    print_ratio("EFS write / (2 trips + write)", efs / (2 * trips + durable), 1, true);
  }
}

}  // namespace

int main(int argc, char **argv) {
  const std::string state_dir = rpk_bench::use_private_state_dir();
  best_run_reporter reporter;
  const bool ran = run_best_of_five(argc, argv, reporter);
  if (ran) print_ratios(reporter);
  benchmark::Shutdown();
  return rpk_bench::drop_state_dir(state_dir, RPK_BENCH_SIM) && ran ? 0 : 1;
}
