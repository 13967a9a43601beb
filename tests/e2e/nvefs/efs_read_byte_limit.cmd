# A read stops once it holds 102410 bytes or more: 242 chunks of 424.
setup: head -c 110000 /dev/zero | tr '\000' '\001' > "$RPK_SIM_DIR/big.bin"
setup: "$SIM" efs set-file 0 /nv/item_files/rpk/big "$RPK_SIM_DIR/big.bin"
bin: rpk-nvefs-probe
args: read 0 /nv/item_files/rpk/big 200000 -q
check: python3 "$CASE_DIR/../journal.py" count 242
check: python3 "$CASE_DIR/../journal.py" req -1 u32@84=102184
