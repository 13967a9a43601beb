# No client: the start fails on client -1 and the query is not made.
setup: "$SIM" fault refuse-init --service stats --count 1
args: 9 0 0
check: ! grep -q '"service":"stats"' "$RPK_SIM_DIR/journal.jsonl"
