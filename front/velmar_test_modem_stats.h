// Category 7: the statistics engine's self-test on a canned packet (types 0
// and 1) and the modem's statistics debug counters (type 2).
#pragma once

// Types 0 and 1: feeds the canned 108-byte packet to the log dispatcher (type
// 0) or the event dispatcher (any other type) under the id in argv[3].
// Returns 1 when it dispatched, 0 (after the too-few note) when argc <= 3.
int velmar_test_modem_stats_log_or_event(int argc, char **argv);

// Type 2: with argc at least 4 runs the debug query with mask = atoi(argv[3])
// and returns 1 whatever the outcome; with fewer prints the too-few note and
// returns 0.
int velmar_test_modem_stats_get_debug_info(int argc, char **argv);
