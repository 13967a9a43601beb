# Set, then get: the modem's file holds v_ant, v_sys and the mask.
setup: "$RPK" 3 3 1 4 0x3 >/dev/null
args: 3 4
check: python3 "$CASE_DIR/../journal.py" req -1 request_id=2 u8@0=4 u8@4=43 @5=2f6e762f6974656d5f66696c65732f6d6f64656d2f616e74656e6e612f616e745f74785f636f6e66696700
