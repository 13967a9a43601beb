args: 6 3 0xff 300
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=3 data_len=2 data=ff2c
help: 6
