# The answer's envelope carries 24 bytes of record (4 of the value) while the
# record says the item has 9: the NV read refuses the bytes it never got (-108).
setup: "$SIM" fault corrupt --patch 17:18000000
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=corrupt
help: 4
