// Packets per second through the statistics dispatchers for a mixed set of
// packets (every log code with an accepted version and a plausible count,
// the same codes refused by their version, and every event id), beside a
// floor that only copies the same bytes into the readable area, as
// rpk-decode does before each dispatch. The engine prints every packet; the
// printing goes to /dev/null and is part of what is measured.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "bench/quiet_stdout.h"
#include "modem_stats/logs/golden.h"
#include "modem_stats/modem_stats_dispatch.h"

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

void BM_DispatchMixed(benchmark::State &state) { dispatch_all(state, mixed_set()); }
void BM_CopyFloorMixed(benchmark::State &state) { copy_floor(state, mixed_set()); }
void BM_DispatchGolden(benchmark::State &state) { dispatch_all(state, golden_set()); }
void BM_CopyFloorGolden(benchmark::State &state) { copy_floor(state, golden_set()); }
BENCHMARK(BM_DispatchMixed);
BENCHMARK(BM_CopyFloorMixed);
BENCHMARK(BM_DispatchGolden);
BENCHMARK(BM_CopyFloorGolden);

}  // namespace

BENCHMARK_MAIN();
