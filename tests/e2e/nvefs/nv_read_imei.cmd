# The factory IMEI item of subscription 0: one request id 2 record, op 1,
# item 550 (0x0226), the rest of the 512 bytes zero.
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" count 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=2 data_len=512 data_valid=1 data=01002602
