# Restarts already on: the request goes out with no wait (the wait property is
# unset, so any wait would be 3 s) and nothing is restored.
setup: "$SIM" set ssr_ms 200
setup: "$SIM" prop set persist.vendor.ssr.restart_level ALL_ENABLE
args: 5 5
check: python3 "$CASE_DIR/../journal.py" count 1
check: test "$("$SIM" prop get persist.vendor.ssr.restart_level)" = ALL_ENABLE
