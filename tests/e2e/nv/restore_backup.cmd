# A restore with flag 0 brings back what the last backup saved.
setup: "$RPK" 1 2 >/dev/null
setup: "$SIM" nv set 0 6853 01
setup: "$SIM" journal clear
args: 1 3 0
check: python3 "$CASE_DIR/../journal.py" req 1 data=05000000
check: "$SIM" nv get 0 6853 | grep -q "^6c 69 6e 65 3d"
