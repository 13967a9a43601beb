# The service answers the common request with error 94: the client's -3 is the
# dispatcher's error code, the modem's code shows in the client's line.
setup: "$SIM" fault error 94 --request-id 4
args: 5 2 0
check: python3 "$CASE_DIR/../journal.py" req 1 fault=error
help: 5
