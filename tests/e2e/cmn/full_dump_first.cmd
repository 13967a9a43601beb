# First full dump on a fresh device: the level (unset, read as ALL_ENABLE) is
# saved, restarts are switched off and counted (no count file yet: counts as
# 0), and the modem writes its dump while its services are away.
setup: "$SIM" set dump_ms 200
args: 5 6
check: python3 "$CASE_DIR/../journal.py" req -1 request_id=4 data=02000000000000001f0000000400000000200000
check: test "$("$SIM" prop get persist.vendor.ssr.restart_level)" = ALL_DISABLE
check: test "$("$SIM" prop get persist.vendor.ssr.restart_level_bak)" = ALL_ENABLE
check: test "$("$SIM" efs get 0 /nv/item_files/modem/velmar/ssr_update_count)" = "01 00 00 00"
check: test -s "$RPK_SIM_DIR/dumps/modem_dump_1.bin"
