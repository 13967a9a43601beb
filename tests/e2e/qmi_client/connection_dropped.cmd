# The modem closes the connection instead of answering: the platform send
# fails (-2), which the client reports as -3 and the NV layer as -103.
setup: "$SIM" fault drop-after 0
args: 4 3 0 6858
check: python3 "$CASE_DIR/../journal.py" req 1 fault=drop
check: "$SIM" nv get 0 6858 >/dev/null
help: 4
