# Type 0, count 3 and the values; the modem keeps them in its EFS file.
args: 3 0 1 2 3
check: python3 "$CASE_DIR/../journal.py" count 1 -- req 1 request_id=4 data_len=512 data=000000000000000003000000010000000200000003000000
check: test "$("$SIM" efs get 0 /nv/item_files/modem/velmar/rf_ant_port_config)" = "03 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00"
