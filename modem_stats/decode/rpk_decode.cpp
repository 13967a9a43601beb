// rpk-decode: the statistics engine over captured diag packets.
#include "modem_stats/decode/decode_run.h"

int main(int argc, char **argv) { return rpk_decode_main(argc, argv); }
