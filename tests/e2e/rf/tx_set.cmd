# Type 1, v_ant, v_sys and the 64-bit band mask.
args: 3 3 1 4 0x3
check: python3 "$CASE_DIR/../journal.py" count 1 -- req 1 request_id=4 data_len=512 data=0100000000000000010000000400000003
