# Restarts switched on again after a first dump: the next dump counts on from
# the stored count; the saved level stays the first one.
setup: "$SIM" set dump_ms 200
setup: "$RPK" 5 6 >/dev/null
setup: "$SIM" fault up
setup: "$SIM" prop set persist.vendor.ssr.restart_level ALL_ENABLE
args: 5 6
check: test "$("$SIM" efs get 0 /nv/item_files/modem/velmar/ssr_update_count)" = "02 00 00 00"
