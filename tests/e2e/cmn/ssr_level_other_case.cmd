# "all_enable" is not ALL_ENABLE: it is switched, and written back as it was.
# With no away time the modem still restarts and serves again at once.
setup: "$SIM" set ssr_ms 0
setup: "$SIM" prop set persist.radio.ssr_wait_s 0
setup: "$SIM" prop set persist.vendor.ssr.restart_level all_enable
args: 5 5
check: test "$("$SIM" prop get persist.vendor.ssr.restart_level)" = all_enable
check: "$SIM" status | grep -q '"restarts": 1'
check: "$RPK" 5 4 | grep -q '^data: 38 00 00 00 04 00 00 00$'
