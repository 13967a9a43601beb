setup: "$SIM" efs set 0 /nv/item_files/rpk/gone 01
args: 4 6 0 /nv/item_files/rpk/gone
check: python3 "$CASE_DIR/../journal.py" req 1 u8@0=6 u8@4=23
check: ! "$SIM" efs get 0 /nv/item_files/rpk/gone >/dev/null 2>&1
