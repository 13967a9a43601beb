# A flag of two characters is refused and 0 is used.
args: 1 2 10
check: python3 "$CASE_DIR/../journal.py" req 1 data=04000000
