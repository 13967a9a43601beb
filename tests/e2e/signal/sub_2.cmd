# Only subscriptions 0 and 1 exist; nothing is asked of the modem.
args: 9 0 2
check: ! grep -q get_stats "$RPK_SIM_DIR/journal.jsonl"
