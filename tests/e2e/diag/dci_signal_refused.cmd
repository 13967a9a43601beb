# A failure after registration: the session is closed, then the client is
# released (after the close, so the modem sees no release).
setup: "$SIM" fault error 1006 --service dci-signal
args: 5 0 1 0 3000 0x1C
check: python3 "$CASE_DIR/diag_journal.py" count 0
check: python3 "$CASE_DIR/diag_journal.py" calls dci_register dci_signal
help: 5
