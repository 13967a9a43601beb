# Without a sub: the note and the category-9 help; no client is opened.
args: 9 0
check: ! grep -q stats "$RPK_SIM_DIR/journal.jsonl" 2>/dev/null
help: 9
