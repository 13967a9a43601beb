# The largest file: 247 chunks of 414 bytes and one of 152, 248 requests.
bin: rpk-nvefs-probe
args: write 0 /nv/item_files/rpk/big 102410 -q
check: python3 "$CASE_DIR/../journal.py" count 248
check: python3 "$CASE_DIR/../journal.py" each u8@0=5 u32@76=102410
check: python3 "$CASE_DIR/../journal.py" req -1 u32@80=152 u32@84=102258
check: "$(dirname "$RPK")/rpk-nvefs-probe" read 0 /nv/item_files/rpk/big 102410 -q | grep -qx "velmar_efs_read: 0, len 102410, pattern yes"
