# An empty file answers a first chunk of 0 bytes: -108.
setup: "$SIM" efs set 0 /nv/item_files/rpk/empty
args: 4 4 0 /nv/item_files/rpk/empty
check: python3 "$CASE_DIR/../journal.py" count 1
help: 4
