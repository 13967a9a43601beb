args: 6 5 0
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=5 data_len=1 data=
help: 6
