# Card status get of subscription 1 with no card there: the modem answers 0.
setup: "$SIM" set card_present.1 0
args: 5 2 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=4 data=0200000000000000370000000400000001000000
