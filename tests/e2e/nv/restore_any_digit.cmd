# Any one-character flag is passed as atoi reads it.
args: 1 3 7
check: python3 "$CASE_DIR/../journal.py" req 1 data=0500000007
