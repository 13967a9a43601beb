# No values: count 0, the whole record zero.
args: 3 0
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=4 data_len=512 data=00
