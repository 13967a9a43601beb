# The answer names another transaction: it matches no request, so the request
# is never answered and times out (-3 → -103).
setup: "$SIM" fault corrupt --txn 0x99
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=corrupt
help: 4
out: header_len_past_packet.out
