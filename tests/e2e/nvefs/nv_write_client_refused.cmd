# A service that refuses every Extend-QMI client: the write fails at the open
# with -102, nothing is journalled and the item keeps its 128 factory bytes.
setup: "$SIM" fault refuse-init --service extend
args: 4 2 0 6853 9 9
check: test ! -s "$RPK_SIM_DIR/journal.jsonl"
check: test "$("$SIM" nv get 0 6853 | wc -w)" = 128
help: 4
