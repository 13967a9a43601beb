# The answer's header says its TLV area is longer than the packet (length
# field at packet offset 5): the framework drops it, and the request times out
# (-3 → -103).
setup: "$SIM" fault corrupt --patch 5:ffff
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=corrupt
help: 4
