# A SAR query while the modem restarts finds no service (-1); once the
# services are back a query works again.
setup: "$SIM" set ssr_ms 1000
setup: "$SIM" prop set persist.vendor.ssr.restart_level ALL_ENABLE
setup: "$RPK" 5 5 >/dev/null
args: 5 8
check: "$RPK" 5 4 >/dev/null && "$RPK" 5 8 | grep -qx 'SAR DSI: 0'
