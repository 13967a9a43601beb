# strtoul base 0: a leading 0 is octal.
args: 3 3 1 0 017
check: python3 "$CASE_DIR/../journal.py" req 1 u64@16=15
