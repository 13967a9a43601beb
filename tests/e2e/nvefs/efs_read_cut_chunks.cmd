# The same read in 100-byte chunks: four requests at offsets 0, 100, 200 and
# 300; only 65 bytes of the last chunk fit.
setup: "$SIM" fault chunk 100
args: 4 4 0 /nv/item_files/modem/velmar/rf_cal_data
check: python3 "$CASE_DIR/../journal.py" count 4
check: python3 "$CASE_DIR/../journal.py" req 1 u32@84=0
check: python3 "$CASE_DIR/../journal.py" req 2 u32@84=100
check: python3 "$CASE_DIR/../journal.py" req 3 u32@84=200
check: python3 "$CASE_DIR/../journal.py" req 4 u32@84=300
