# A 1000-byte file into the command's 365-byte buffer: the first 424-byte
# chunk already passes 365, so one request, 365 bytes shown, result 0.
args: 4 4 0 /nv/item_files/modem/velmar/rf_cal_data
check: python3 "$CASE_DIR/../journal.py" count 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=2 data=04000000272f6e762f6974656d5f66696c65732f6d6f64656d2f76656c6d61722f72665f63616c5f64617461
