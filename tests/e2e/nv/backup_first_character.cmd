# Only the operation's first character counts: 25 is a backup.
args: 1 25
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=1 data=04000000
