# Card status query: common type 39 with no value. Only the echoed type and
# length words are shown, as the request carried no value.
setup: "$SIM" set card_present.0 0
args: 5 1
check: python3 "$CASE_DIR/../journal.py" count 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=4 data_len=512 data=02000000000000002700000000000000
check: grep -q '"data":"0200000000000000270000000400000001000000' "$RPK_SIM_DIR/journal.jsonl"
