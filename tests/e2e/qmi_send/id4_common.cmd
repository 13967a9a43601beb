# Request id 4, kind 2: a common command (56, card type query), no value.
args: 6 4 2 0 0 0 0 0 0 0 56 0 0 0 0 0 0 0
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=4 data_len=16 data=020000000000000038
