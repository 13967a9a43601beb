# A second full dump finds restarts off: nothing saved, nothing counted.
setup: "$SIM" set dump_ms 200
setup: "$RPK" 5 6 >/dev/null
setup: "$SIM" fault up
args: 5 6
check: python3 "$CASE_DIR/../journal.py" req -1 data=02000000000000001f0000000400000000200000
check: test "$("$SIM" prop get persist.vendor.ssr.restart_level_bak)" = ALL_ENABLE
check: test "$("$SIM" efs get 0 /nv/item_files/modem/velmar/ssr_update_count)" = "01 00 00 00"
check: test -s "$RPK_SIM_DIR/dumps/modem_dump_2.bin"
