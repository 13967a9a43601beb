# Values pass as atoi reads them: -1 travels as 0xFFFFFFFF, 7x as 7.
args: 3 0 -1 7x
check: python3 "$CASE_DIR/../journal.py" req 1 data=000000000000000002000000ffffffff07000000
