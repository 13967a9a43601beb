# Refused before any request.
args: 4 1 0 7233
check: python3 "$CASE_DIR/../journal.py" count 0
help: 4
