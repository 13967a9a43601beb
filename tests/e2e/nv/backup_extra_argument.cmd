# The flag is read only when it is the last argument; otherwise 0, silently.
args: 1 2 1 x
check: python3 "$CASE_DIR/../journal.py" req 1 data=04000000
