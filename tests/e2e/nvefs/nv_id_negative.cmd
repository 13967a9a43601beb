# -1 is above 7232 as an unsigned number: refused before any request.
args: 4 3 0 -1
check: python3 "$CASE_DIR/../journal.py" count 0
help: 4
