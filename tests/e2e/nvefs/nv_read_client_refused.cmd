# The service is listed but drops the client as it initialises: the open
# fails (-2, then -102) and no request reaches the modem. The refusal is used
# up, so the next read goes through.
setup: "$SIM" fault refuse-init --count 1
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" count 0
check: test ! -s "$RPK_SIM_DIR/journal.jsonl"
check: "$SIM" status | grep -q '"refused_clients": 1'
check: "$RPK" 4 1 0 550 | grep -qx "data:  08 3A 65 39 08 53 46 83 90"
help: 4
