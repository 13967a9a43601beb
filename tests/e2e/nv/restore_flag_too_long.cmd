args: 1 3 10
check: python3 "$CASE_DIR/../journal.py" req 1 data=05000000
