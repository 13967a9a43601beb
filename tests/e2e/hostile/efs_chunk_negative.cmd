# A read chunk whose length is negative as a signed word (0x80000000): the read
# stops at once (-108).
setup: "$SIM" fault corrupt --claim 0x80000000
args: 4 4 0 /nv/item_files/modem/velmar/rf_cal_data
check: python3 "$CASE_DIR/../journal.py" count 1
help: 4
