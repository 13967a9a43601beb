# One byte over the limit is refused before any request.
bin: rpk-nvefs-probe
args: write 0 /nv/item_files/rpk/big 102411
check: python3 "$CASE_DIR/../journal.py" count 0
