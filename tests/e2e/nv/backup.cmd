# Operation 4 with privacy flag 0; the modem writes its qcn.bin and the tool
# prints where the phone keeps it.
args: 1 2
check: python3 "$CASE_DIR/../journal.py" count 1 -- req 1 request_id=1 data_len=428 data=04000000
check: test -s "$RPK_SIM_DIR/qcn.bin"
