# A card command while the modem restarts waits for the service to come back,
# then goes through.
setup: "$SIM" set ssr_ms 1000
setup: "$SIM" prop set persist.vendor.ssr.restart_level ALL_ENABLE
setup: "$RPK" 5 5 >/dev/null
args: 5 4
check: python3 "$CASE_DIR/../journal.py" count 2
