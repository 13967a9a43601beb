setup: "$SIM" efs set 0 /nv/item_files/modem/velmar/rf_ant_port_config 00 00 00 00
args: 3 2
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=2 u8@0=6 u8@4=47 @5=2f6e762f6974656d5f66696c65732f6d6f64656d2f76656c6d61722f72665f616e745f706f72745f636f6e66696700
check: ! "$SIM" efs get 0 /nv/item_files/modem/velmar/rf_ant_port_config 2>/dev/null
