# The service answers with an error in the envelope: -3 from the client, -103
# from the NV layer; nothing is carried out.
setup: "$SIM" fault error 94 --request-id 2
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=error
help: 4
