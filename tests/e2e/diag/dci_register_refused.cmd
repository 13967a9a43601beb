# Registration refused: the session is closed at once and nothing released.
setup: "$SIM" fault error 1009 --service dci-register
args: 5 0 1 0 3000 0x1C
check: python3 "$CASE_DIR/diag_journal.py" count 0
check: python3 "$CASE_DIR/diag_journal.py" calls dci_register
help: 5
