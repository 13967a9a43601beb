// Writes the golden packets of the log-parser tests as the fuzzer's seed
// corpus, one file each, in modem_stats_fuzz's input form: a pick byte below
// 0x80 (a log code), the code's row in the log table, then the payload. The
// fuzzing then starts from every parser's accepted versions instead of
// having to find them.
#include <cstdio>
#include <string>

#include "modem_stats/logs/golden.h"
#include "modem_stats/modem_stats_dispatch.h"

int main(int argc, char **argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: %s <corpus dir>\n", argv[0]);
    return 2;
  }
  const auto logs = modem_stats_log_table();
  int written = 0;
  for (const auto list : {modem_stats_golden_lte(), modem_stats_golden_nr()}) {
    for (const modem_stats_golden &g : list) {
      size_t row = 0;
      while (row < logs.size() && logs[row].code != g.code) ++row;
      if (row == logs.size() || row > 0xFF) continue;
      const std::string path = std::string(argv[1]) + "/golden_" + std::to_string(written);
      FILE *f = fopen(path.c_str(), "wb");
      if (f == nullptr) {
        perror(path.c_str());
        return 1;
      }
      const unsigned char head[2] = {0, static_cast<unsigned char>(row)};
      fwrite(head, 1, sizeof head, f);
      fwrite(g.payload.data(), 1, g.payload.size(), f);
      fclose(f);
      ++written;
    }
  }
  printf("%d golden packets\n", written);
  return 0;
}
