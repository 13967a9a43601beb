# The file read back on sub 0, its path passed with the terminator (47).
setup: "$SIM" efs set 0 /nv/item_files/modem/velmar/rf_ant_port_config 02 00 00 00 05 00 00 00 06 00 00 00
args: 3 1
check: python3 "$CASE_DIR/../journal.py" count 1 -- req 1 request_id=2 u8@0=4 u8@1=0 u8@4=47 @5=2f6e762f6974656d5f66696c65732f6d6f64656d2f76656c6d61722f72665f616e745f706f72745f636f6e66696700
