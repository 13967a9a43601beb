// Packets per second through the statistics dispatchers for a mixed set of
// packets (every log code with an accepted version and a plausible count,
// the same codes refused by their version, and every event id), beside a
// floor that only copies the same bytes into the readable area, as
// rpk-decode does before each dispatch. The engine prints every packet; the
// printing goes to /dev/null and is part of what is measured.
//
// The same mixed set, written as an HDLC capture and in the text form, then
// goes through the whole of rpk-decode (reading the file, deframing or
// parsing, the engine, plain or JSON output to /dev/null). The run ends with
// the decoding rates as shares of the engine's dispatch rate, each the best
// of five shuffled repetitions.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench/best_run_reporter.h"
#include "bench/quiet_stdout.h"
#include "modem_stats/decode/decode_run.h"
#include "modem_stats/logs/golden.h"
#include "modem_stats/modem_stats_dispatch.h"
#include "support/diag_capture.h"

namespace {

struct packet {
  bool event;
  uint16_t id;
  std::vector<uint8_t> payload;
};

// Byte offset and value, written over a zeroed payload.
struct poke {
  int at;
  uint8_t value;
};

void put_u32(std::vector<uint8_t> &p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}

packet log_packet(uint16_t code, uint32_t version, bool wide_version,
                  std::initializer_list<poke> pokes) {
  packet pk{false, code, std::vector<uint8_t>(256, 0)};
  if (wide_version) {
    put_u32(pk.payload, version);
  } else {
    pk.payload[0] = static_cast<uint8_t>(version);
  }
  for (const poke &p : pokes) pk.payload[static_cast<size_t>(p.at)] = p.value;
  return pk;
}

std::vector<packet> mixed_set() {
  std::vector<packet> set = {
      log_packet(0x1568, 13, false, {}),
      log_packet(0x156E, 1, false, {{3, 4}}),
      log_packet(0x1830, 2, false, {}),
      log_packet(0x1831, 2, false, {}),
      log_packet(0x4179, 8, false, {{3, 0x10}, {5, 0x20}}),
      log_packet(0x5096, 6, false, {{1, 0x80}}),
      log_packet(0xB062, 1, false, {{1, 1}, {4, 6}, {5, 49}, {11, 5}}),
      log_packet(0xB064, 1, false, {{4, 8}, {5, 1}, {8, 1}}),
      log_packet(0xB0C2, 3, false, {{1, 0x2A}}),
      log_packet(0xB111, 164, false, {{1, 1}}),
      log_packet(0xB14E, 163, false, {}),
      log_packet(0xB16D, 49, false, {{3, 1}}),
      log_packet(0xB16E, 5, false, {{3, 1}}),
      log_packet(0xB16F, 4, false, {{3, 1}}),
      log_packet(0xB173, 48, false, {{1, 1}}),
      log_packet(0xB193, 1, false, {{4, 25}, {5, 40}, {12, 1}}),
      log_packet(0xB823, 0x30000, true, {}),
      log_packet(0xB825, 0x30003, true, {}),
      log_packet(0xB872, 0x30008, true, {{4, 1}}),
      log_packet(0xB884, 0x30005, true, {{7, 1}}),
      log_packet(0xB885, 0x30009, true, {{7, 1}}),
      log_packet(0xB887, 0x30003, true, {{7, 1}, {12, 1}}),
      log_packet(0xB888, 0x30000, true, {{7, 1}}),
      log_packet(0xB88A, 0x30005, true, {{16, 2}}),
      log_packet(0xB8A7, 0x30005, true, {{7, 1}, {26, 23}}),
      log_packet(0xB8C9, 0x30001, true, {{16, 4}, {17, 48}}),
      log_packet(0xB8D2, 0x20000, true, {{5, 1}}),
      log_packet(0xB8D8, 0x30002, true, {{12, 1}}),
      log_packet(0xB8DD, 7, true, {}),
      log_packet(0xB975, 0x20001, true, {}),
      log_packet(0xB97F, 0x20007, true, {{4, 1}}),
      log_packet(0xB981, 0x20000, true, {{6, 1}}),
      log_packet(0xB98F, 0x20002, true, {}),
  };
  // The same codes at a version no parser accepts.
  for (const auto &row : modem_stats_log_table()) set.push_back(log_packet(row.code, 9, false, {}));
  // Every event, on the category-7 self-test bytes.
  for (const auto &row : modem_stats_event_table()) {
    packet pk{true, row.id, std::vector<uint8_t>(108, 0)};
    pk.payload[0] = 0x09;
    pk.payload[2] = 0x04;
    pk.payload[15] = 0x01;
    set.push_back(pk);
  }
  return set;
}

// The log parsers' golden packets: every accepted version of all 33 codes
// with the refusals and edge cases the tests pin.
std::vector<packet> golden_set() {
  std::vector<packet> set;
  for (auto list : {modem_stats_golden_lte(), modem_stats_golden_nr()}) {
    for (const modem_stats_golden &g : list) set.push_back({false, g.code, g.payload});
  }
  return set;
}

void fill_area(std::vector<uint8_t> &area, const packet &p) {
  std::fill(area.begin(), area.end(), 0);
  memcpy(area.data(), p.payload.data(), p.payload.size());
}

void dispatch_all(benchmark::State &state, const std::vector<packet> &set) {
  std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN);
  int64_t records = 0;
  quiet_stdout quiet;
  for (auto _ : state) {
    for (const packet &p : set) {
      fill_area(area, p);
      uint32_t stat_id = 0;
      modem_stats_single *record = nullptr;
      if (p.event) {
        modem_stats_diag_process_event_rec(p.id, area.data(), &stat_id, &record);
      } else {
        modem_stats_diag_process_log_rec(p.id, area.data(), &stat_id, &record);
      }
      records += record != nullptr;
      modem_stats_free_single(record);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(set.size()));
  state.counters["packets"] = static_cast<double>(set.size());
  state.counters["records_per_set"] =
      static_cast<double>(records) / static_cast<double>(state.iterations());
}

void copy_floor(benchmark::State &state, const std::vector<packet> &set) {
  std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN);
  for (auto _ : state) {
    for (const packet &p : set) {
      fill_area(area, p);
      benchmark::DoNotOptimize(area.data());
      benchmark::ClobberMemory();
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(set.size()));
}

// The mixed set repeated, so one decoding run's start-up is spread over
// many packets, as in a real capture.
constexpr int kCaptureRepeats = 64;

std::string write_capture(bool text) {
  std::string path = (getenv("TMPDIR") != nullptr ? getenv("TMPDIR") : "/tmp");
  path += "/rpk-decode-bench-XXXXXX";
  const int fd = mkstemp(path.data());
  FILE *f = fd >= 0 ? fdopen(fd, "wb") : nullptr;
  if (f == nullptr) return "";
  const std::vector<packet> set = mixed_set();
  for (int r = 0; r < kCaptureRepeats; ++r) {
    for (const packet &p : set) {
      if (text) {
        fprintf(f, p.event ? "E%u " : "%04X ", static_cast<unsigned>(p.id));
        for (uint8_t b : p.payload) fprintf(f, "%02x", b);
        fputc('\n', f);
      } else {
        const auto frame = diag_capture::hdlc(
            p.event ? diag_capture::event_report({diag_capture::event(p.id, p.payload, false)})
                    : diag_capture::log_packet(p.id, p.payload));
        fwrite(frame.data(), 1, frame.size(), f);
      }
    }
  }
  fclose(f);
  return path;
}

// The captures live for the whole run and are removed at its end.
struct capture_files {
  std::string hdlc = write_capture(false);
  std::string text = write_capture(true);
  ~capture_files() {
    unlink(hdlc.c_str());
    unlink(text.c_str());
  }
};

const capture_files &captures() {
  static const capture_files files;
  return files;
}

void decode_capture(benchmark::State &state, const std::string &path, bool json) {
  if (path.empty()) {
    state.SkipWithError("cannot write the capture");
    return;
  }
  std::vector<std::string> args = {"rpk-decode", path};
  if (json) args.insert(args.begin() + 1, "--json");
  std::vector<char *> argv;
  for (auto &a : args) argv.push_back(a.data());
  quiet_stdout quiet;
  quiet_stdout quiet_err(STDERR_FILENO);  // --json puts its counts there
  for (auto _ : state) {
    benchmark::DoNotOptimize(rpk_decode_main(static_cast<int>(argv.size()), argv.data()));
  }
  state.SetItemsProcessed(state.iterations() * kCaptureRepeats *
                          static_cast<int64_t>(mixed_set().size()));
}

void BM_DispatchMixed(benchmark::State &state) { dispatch_all(state, mixed_set()); }
void BM_CopyFloorMixed(benchmark::State &state) { copy_floor(state, mixed_set()); }
void BM_DispatchGolden(benchmark::State &state) { dispatch_all(state, golden_set()); }
void BM_CopyFloorGolden(benchmark::State &state) { copy_floor(state, golden_set()); }
void BM_DecodePlainHdlc(benchmark::State &state) { decode_capture(state, captures().hdlc, false); }
void BM_DecodeJsonHdlc(benchmark::State &state) { decode_capture(state, captures().hdlc, true); }
void BM_DecodePlainText(benchmark::State &state) { decode_capture(state, captures().text, false); }
void BM_DecodeJsonText(benchmark::State &state) { decode_capture(state, captures().text, true); }
BENCHMARK(BM_DispatchMixed);
BENCHMARK(BM_CopyFloorMixed);
BENCHMARK(BM_DispatchGolden);
BENCHMARK(BM_CopyFloorGolden);
BENCHMARK(BM_DecodePlainHdlc);
BENCHMARK(BM_DecodeJsonHdlc);
BENCHMARK(BM_DecodePlainText);
BENCHMARK(BM_DecodeJsonText);

// Each decoding rate against the engine's dispatch rate on the same set.
void print_ratios(const best_run_reporter &best) {
  const double engine = best.rate("BM_DispatchMixed");
  if (engine <= 0) return;
  struct target {
    const char *name;
    double share;
  };
  printf("\nbest rate / best engine dispatch rate (mixed set, %.0f packets/s):\n", engine);
  for (const target &t : {target{"BM_CopyFloorMixed", 0}, target{"BM_DecodePlainHdlc", 0.70},
                          target{"BM_DecodeJsonHdlc", 0.50}, target{"BM_DecodePlainText", 0.70},
                          target{"BM_DecodeJsonText", 0.50}}) {
    const double rate = best.rate(t.name);
    if (rate > 0) print_ratio(t.name, rate / engine, t.share, false);
  }
}

}  // namespace

int main(int argc, char **argv) {
  best_run_reporter reporter;
  if (!run_best_of_five(argc, argv, reporter)) return 1;
  print_ratios(reporter);
  benchmark::Shutdown();
  return 0;
}
