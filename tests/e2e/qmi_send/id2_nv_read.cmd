# Request id 2 with a hand-made NV read record (item 550): the bytes go out as
# typed, decimal or 0x-hexadecimal; no room is offered for the answer.
args: 6 2 0x01 0 0x26 0x02
check: python3 "$CASE_DIR/../journal.py" count 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=2 data_len=4 data=01002602
