# The SAR service answers with an error: its result is not looked at, so the
# (absent) state prints as 0 rather than -1.
setup: "$SIM" set sar_state 3
setup: "$SIM" fault error 94 --service sar
args: 5 8
check: grep '"service":"0x0011"' "$RPK_SIM_DIR/journal.jsonl" | grep -q '"fault":"error"'
