# Any non-zero sub selects subscription 1 (its IMEI ends in 71).
args: 4 1 2 550
check: python3 "$CASE_DIR/../journal.py" req 1 u8@1=1
