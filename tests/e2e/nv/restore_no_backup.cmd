# On a fresh modem there is no backup to restore: the modem's NV status 4.
args: 1 3
check: python3 "$CASE_DIR/../journal.py" req 1 data=05000000
