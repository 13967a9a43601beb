# Every request of the self-test answered with a service error: each item
# shows the client's -3 and length 0, nothing is dumped, the write still goes.
setup: "$SIM" fault error 3 --request-id 1
args: 1 1
check: python3 "$CASE_DIR/../journal.py" count 23 -- req 12 data=02000000ca1a0000000000007c00000064
help: 1
