# Card type query: type 56; the modem answers its card_type setting.
setup: "$SIM" set card_type 1
args: 5 4
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=4 data=02000000000000003800000000000000
check: grep -q '"data":"0200000000000000380000000400000001000000' "$RPK_SIM_DIR/journal.jsonl"
