# In 1-byte chunks a read ends after 300 requests with the 300 bytes it has.
setup: "$SIM" fault chunk 1
bin: rpk-nvefs-probe
args: read 0 /nv/item_files/modem/velmar/rf_cal_data 1000 -q
check: python3 "$CASE_DIR/../journal.py" count 300
check: python3 "$CASE_DIR/../journal.py" req -1 u32@84=299
