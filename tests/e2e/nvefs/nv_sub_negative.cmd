# -1 selects subscription 1 too: the IMEI of slot 1 goes, slot 0 keeps its own.
args: 4 3 -1 550
check: python3 "$CASE_DIR/../journal.py" req 1 u8@0=3 u8@1=1 u16@2=550
check: ! "$SIM" nv get 1 550 >/dev/null 2>&1
check: "$SIM" nv get 0 550 >/dev/null
