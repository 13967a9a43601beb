# Card status set: sub 1, general mode, high; the modem echoes the three words
# and keeps them.
args: 5 3 1 0 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=4 data=0200000000000000390000000c000000010000000000000001000000
check: grep -A2 '"card_detect_level"' "$RPK_SIM_DIR/modem.json" | tr -d ' \n' | grep -q '^"card_detect_level":\[1,1'
