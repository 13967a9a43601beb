# SAR DSI: the state word of the SAR service's answer.
setup: "$SIM" set sar_state 3
args: 5 8
check: grep '"service":"0x0011"' "$RPK_SIM_DIR/journal.jsonl" | grep -q '"sar_rf_state":3'
