# 7232 is the highest item number and is sent; the modem has never written it.
args: 4 1 0 7232
check: python3 "$CASE_DIR/../journal.py" count 1
check: python3 "$CASE_DIR/../journal.py" req 1 u8@0=1 u16@2=7232
help: 4
