# A successful answer without data_valid copies nothing (resp_len 0): the NV
# read sees an item length of 0 and fails with -108.
setup: "$SIM" fault no-data-valid
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=no_data_valid
help: 4
