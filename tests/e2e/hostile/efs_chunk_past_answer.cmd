# The answer's envelope carries 120 bytes of record (100 of data) while the
# chunk claims 424: the read stops (-108) instead of taking 324 bytes it never
# got.
setup: "$SIM" fault corrupt --patch 17:78000000
args: 4 4 0 /nv/item_files/modem/velmar/rf_cal_data
check: python3 "$CASE_DIR/../journal.py" count 1
help: 4
