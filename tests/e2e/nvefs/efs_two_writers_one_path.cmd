# Two writers of one path at once, each several chunks: the file is one of the
# two, whole, never a mix (the other writer runs in the background).
bin: rpk-nvefs-probe
setup: RPK_PROBE_SEED=7 "$(dirname "$RPK")/rpk-nvefs-probe" write 0 /nv/item_files/rpk/both 102410 -q > "$RPK_SIM_DIR/other.txt" 2>&1 &
args: write 0 /nv/item_files/rpk/both 102410 -q
check: for i in $(seq 300); do grep -q velmar_efs_write "$RPK_SIM_DIR/other.txt" && exit 0; sleep 0.1; done; exit 1
check: grep -qx "velmar_efs_write: 0" "$RPK_SIM_DIR/other.txt"
check: p="$(dirname "$RPK")/rpk-nvefs-probe"; { "$p" read 0 /nv/item_files/rpk/both 102410 -q; RPK_PROBE_SEED=7 "$p" read 0 /nv/item_files/rpk/both 102410 -q; } | grep -qx "velmar_efs_read: 0, len 102410, pattern yes"
