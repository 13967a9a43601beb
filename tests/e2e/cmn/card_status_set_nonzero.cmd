# Every non-zero argument is sent as 1, negative ones too.
args: 5 3 2 7 -1
check: python3 "$CASE_DIR/../journal.py" req 1 data=0200000000000000390000000c000000010000000100000001000000
