// Extend-QMI costs against the simulated modem, each beside its floor: the
// same number of bare round trips of the same packet sizes on a Unix
// SOCK_SEQPACKET socket pair answered by an echo thread, and for the EFS
// write also one durable atomic write of the whole file.
//
//   rpk_qmi_bench [--benchmark_filter=...]
//
// Runs its own simulated modem in a fresh state directory and stops it at the
// end. The commands print their traces; they go to /dev/null here.
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

#include "bench/quiet_stdout.h"
#include "front/velmar_test_nvefs.h"
#include "platform/host/link/rpk_host.h"
#include "velmar_extend_qmi/velmar_extend_nvefs.h"

extern char **environ;

namespace {

constexpr uint32_t kFileLen = VELMAR_EFS_FILE_MAX;
constexpr int kFileRequests = (kFileLen + VELMAR_EFS_CHUNK_MAX - 1) / VELMAR_EFS_CHUNK_MAX;
// A full Extend-QMI message either way: 7-byte header and 529 bytes of TLVs.
constexpr size_t kPacket = 7 + 529;
constexpr char kPath[] = "/nv/item_files/rpk_bench/file";

std::string g_state_dir;

// Points the platform at a private state directory before the first request.
void use_private_state_dir() {
  char tmpl[] = "/tmp/rpk-bench-XXXXXX";
  if (mkdtemp(tmpl) == nullptr) {
    perror("mkdtemp");
    exit(1);
  }
  g_state_dir = tmpl;
  setenv("RPK_SIM_DIR", tmpl, 1);
}

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
  const char *argv[] = {RPK_BENCH_RPK, "4", "1", "0", "550", nullptr};
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
  const std::string path = g_state_dir + "/durable_floor.bin";
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
  int fds[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds) != 0) {
    state.SkipWithError("socketpair failed");
    return;
  }
  std::thread echo([fd = fds[1]] {
    uint8_t buf[kPacket];
    while (recv(fd, buf, sizeof buf, 0) > 0) send(fd, buf, sizeof buf, 0);
  });
  const auto trips = state.range(0);
  uint8_t out[kPacket] = {};
  uint8_t in[kPacket];
  for (auto _ : state) {
    for (int64_t i = 0; i < trips; ++i) {
      send(fds[0], out, sizeof out, 0);
      recv(fds[0], in, sizeof in, 0);
    }
  }
  shutdown(fds[0], SHUT_RDWR);
  echo.join();
  close(fds[0]);
  close(fds[1]);
}

BENCHMARK(BM_NvReadCommand)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_NvReadProcess)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SocketRoundTrips)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_EfsWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EfsRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SocketRoundTrips)->Arg(kFileRequests)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DurableFileWrite)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char **argv) {
  use_private_state_dir();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  const std::string stop = "RPK_SIM_DIR='" + g_state_dir +
                           "' '" RPK_BENCH_SIM "' stop >/dev/null 2>&1; rm -rf '" + g_state_dir +
                           "'";
  return system(stop.c_str()) == 0 ? 0 : 1;
}
