args: 1 4 6858
check: python3 "$CASE_DIR/../journal.py" count 1 -- req 1 request_id=1 data_len=428 data=03000000ca1a
check: ! "$SIM" nv get 0 6858 2>/dev/null
