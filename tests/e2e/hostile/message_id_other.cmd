# The answer names message 0x0003 instead of the 0x0002 that was asked: the
# framework refuses it (-14), a failed send for the client (-3 → -103).
setup: "$SIM" fault corrupt --msg-id 3
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=corrupt
help: 4
