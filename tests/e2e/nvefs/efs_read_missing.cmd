# The modem's own error (2, no such file) is passed through.
args: 4 4 1 /nv/item_files/rpk/none
check: python3 "$CASE_DIR/../journal.py" req 1 u8@0=4 u8@1=1
help: 4
