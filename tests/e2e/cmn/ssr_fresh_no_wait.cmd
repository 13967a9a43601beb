# Restart on a fresh device with no wait: the unset level reads ALL_DISABLE, is
# switched to ALL_ENABLE, the request goes out and the level read is written
# back. The modem restarts (every service away for ssr_ms) and serves again.
setup: "$SIM" set ssr_ms 200
setup: "$SIM" prop set persist.radio.ssr_wait_s 0
args: 5 5
check: python3 "$CASE_DIR/../journal.py" req 1 request_id=4 data=02000000000000001f0000000400000000100000
check: test "$("$SIM" prop get persist.vendor.ssr.restart_level)" = ALL_DISABLE
check: "$SIM" status | grep -q '"restarts": 1'
check: "$RPK" 5 4 | grep -q '^data: 38 00 00 00 04 00 00 00$'
