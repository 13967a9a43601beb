# Goldencopy flag 1 restores the factory copy; the flag line is printed on
# every restore.
setup: "$SIM" nv set 0 6853 01
args: 1 3 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=1 data_len=428 data=0500000001
check: "$SIM" nv get 0 6853 | grep -q "^6c 69 6e 65 3d"
