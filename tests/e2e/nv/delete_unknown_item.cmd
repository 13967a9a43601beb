# Five digits pass the tool's check; the modem refuses item 12345 (status 6).
args: 1 4 12345
check: python3 "$CASE_DIR/../journal.py" req 1 data=0300000039300000
