# NV sync: type 35, no value; nothing of the answer is printed.
args: 5 7
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=4 data=02000000000000002300000000000000
check: "$SIM" status | grep -q '"nv_syncs": 1'
