# A write prints only its trace; 256 keeps its low byte. The item reads back
# through rpk and in the modem's own store.
args: 4 2 0 6853 1 2 255 256
check: python3 "$CASE_DIR/../journal.py" count 1
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=2 data_len=512 data=0200c51a0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000400000000000000000000000102ff00
check: test "$("$SIM" nv get 0 6853)" = "01 02 ff 00"
check: "$RPK" 4 1 0 6853 | grep -qx "data:  01 02 FF 00"
