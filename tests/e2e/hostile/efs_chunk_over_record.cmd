# A read chunk that claims 425 bytes, one more than the record can hold: the
# read stops (-108) instead of copying past the chunk.
setup: "$SIM" fault corrupt --claim 425
args: 4 4 0 /nv/item_files/modem/velmar/rf_cal_data
check: python3 "$CASE_DIR/../journal.py" count 1
help: 4
