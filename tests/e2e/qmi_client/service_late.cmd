# The service is away when the command starts: the open waits for it, however
# long, and the request then goes through.
setup: "$SIM" fault down 1500
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" count 1
