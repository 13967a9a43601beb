# -1 is taken unsigned: refused too.
args: 6 -1 1
check: python3 "$CASE_DIR/../journal.py" count 0
help: 6
out: id6_refused.out
