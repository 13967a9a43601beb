# 414 bytes are one request.
bin: rpk-nvefs-probe
args: write 0 /nv/item_files/rpk/f414 414
check: python3 "$CASE_DIR/../journal.py" count 1
check: python3 "$CASE_DIR/../journal.py" req 1 u8@0=5 u32@76=414 u32@80=414 u32@84=0 @88=0102 @500=a2a30000
check: "$(dirname "$RPK")/rpk-nvefs-probe" read 0 /nv/item_files/rpk/f414 414 -q | grep -qx "velmar_efs_read: 0, len 414, pattern yes"
