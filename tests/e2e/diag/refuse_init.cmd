# The library cannot be opened: the send fails at once (no wait).
setup: "$SIM" fault refuse-init --service diag
args: 5 0 0 0 3000 0x1C
check: python3 "$CASE_DIR/diag_journal.py" count 0
help: 5
