# Request id 0: the service does not know it and answers error 0x5E.
args: 6 0 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=0 data_len=1 data=01
help: 6
