# The mask keeps all 64 bits (LTE's extra bands are bits 44 to 63).
args: 3 3 0 4 0xF000000000000001
check: python3 "$CASE_DIR/../journal.py" req 1 data=0100000000000000000000000400000001000000000000f0
