# An answer later than 3000 ms is a failed send (-3 → -103). The check times a
# second such read: it gives up after 3 s, not when the late answer comes.
setup: "$SIM" fault delay 4500 --count 1
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 delay_ms=4500
check: "$SIM" fault delay 4500 --count 1 && s=$(date +%s%N) && "$RPK" 4 1 0 550 >/dev/null && ms=$(( ($(date +%s%N) - s) / 1000000 )) && echo "$ms ms" && test $ms -ge 2950 -a $ms -lt 4000
help: 4
