# "all_enable" is not ALL_ENABLE: it is switched, and written back as it was.
setup: "$SIM" set ssr_ms 200
setup: "$SIM" prop set persist.radio.ssr_wait_s 0
setup: "$SIM" prop set persist.vendor.ssr.restart_level all_enable
args: 5 5
check: test "$("$SIM" prop get persist.vendor.ssr.restart_level)" = all_enable
