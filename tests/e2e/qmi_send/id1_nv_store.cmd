# Request id 1 carries an NV store record; this one is cut short.
args: 6 1 1 0 0 0 0x26 2
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=1 data_len=6 data=010000002602
