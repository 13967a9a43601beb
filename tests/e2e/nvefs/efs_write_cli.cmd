# Data bytes are read with atoi, so 0x03 is 0 and ends the data: a 2-byte
# file on subscription 1, written as one chunk.
args: 4 5 1 /nv/item_files/rpk/cli 1 2 0x03 4
check: python3 "$CASE_DIR/../journal.py" count 1
check: python3 "$CASE_DIR/../journal.py" req 1 u8@0=5 u8@1=1 u32@76=2 u32@80=2 u32@84=0 @88=01020000
check: test "$("$SIM" efs get 1 /nv/item_files/rpk/cli)" = "01 02"
