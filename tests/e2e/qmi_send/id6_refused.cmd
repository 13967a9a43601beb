# Only ids 0 to 5 exist: refused before any request.
args: 6 6 1
check: python3 "$CASE_DIR/../journal.py" count 0
help: 6
