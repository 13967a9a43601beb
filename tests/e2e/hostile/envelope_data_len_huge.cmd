# The answer's envelope claims 0xffffffff data bytes (TLV 0x02's value is at
# packet offset 17): the client copies no more than the room it offered, and
# the NV read goes on as usual.
setup: "$SIM" fault corrupt --patch 17:ffffffff --count 1
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=corrupt
