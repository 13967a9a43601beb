args: 1 2 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=1 data_len=428 data=0400000001
