// The console report, keeping each benchmark's best repetition for the ratios
// a benchmark prints at its end: on a shared machine a neighbour only ever
// slows a repetition down, so the fastest one is the closest to what the code
// costs.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <vector>

class best_run_reporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run> &runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run &run : runs) {
      if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
      best &b = best_[run.run_name.str()];
      b.seconds =
          std::min(b.seconds, run.real_accumulated_time / static_cast<double>(run.iterations));
      const auto it = run.counters.find("items_per_second");
      if (it != run.counters.end()) b.rate = std::max(b.rate, it->second.value);
    }
  }

  // The best items per second of the named run (as Google Benchmark names
  // it, e.g. "BM_X" or "BM_X/248"), or 0 when it did not run.
  double rate(const std::string &name) const {
    const auto it = best_.find(name);
    return it == best_.end() ? 0 : it->second.rate;
  }
  // The best wall time of one iteration, in seconds, or 0.
  double seconds(const std::string &name) const {
    const auto it = best_.find(name);
    return it == best_.end() || it->second.seconds == kNone ? 0 : it->second.seconds;
  }

 private:
  static constexpr double kNone = std::numeric_limits<double>::infinity();
  struct best {
    double seconds = kNone;
    double rate = 0;
  };
  std::map<std::string, best> best_;
};

// Runs the registered benchmarks, five repetitions each in shuffled order
// unless the command line says otherwise (later flags win): a burst of load
// then hits one repetition of one benchmark, not every run of it. Returns
// false on an unknown flag.
inline bool run_best_of_five(int argc, char **argv, best_run_reporter &reporter) {
  char repetitions[] = "--benchmark_repetitions=5";
  char interleave[] = "--benchmark_enable_random_interleaving=true";
  std::vector<char *> args = {argv[0], repetitions, interleave};
  for (int i = 1; i < argc; ++i) args.push_back(argv[i]);
  int count = static_cast<int>(args.size());
  args.push_back(nullptr);
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) return false;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return true;
}

// "  <name> <ratio>  (target <= or >= <bound>: met | MISSED)", or without the
// target when bound is 0.
inline void print_ratio(const char *name, double ratio, double bound, bool at_most) {
  if (bound <= 0) {
    printf("  %-28s %6.2f\n", name, ratio);
    return;
  }
  const bool met = at_most ? ratio <= bound : ratio >= bound;
  printf("  %-28s %6.2f  (target %s %.2f: %s)\n", name, ratio, at_most ? "<=" : ">=", bound,
         met ? "met" : "MISSED");
}
