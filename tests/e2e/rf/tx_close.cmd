setup: "$RPK" 3 3 1 4 0x3 >/dev/null
args: 3 5
check: python3 "$CASE_DIR/../journal.py" req -1 request_id=2 u8@0=6 u8@4=43
check: ! "$SIM" efs get 0 /nv/item_files/modem/antenna/ant_tx_config 2>/dev/null
