# A pinned LTE primary-carrier record prints field for field, two decimals each.
# The request carries number 1, sub 0, record 82 after the feature start (2, 1, 1, 1).
setup: "$SIM" stats set 0 82 0100140500006500010f000000bfc2000024c1008083c2000048410000c2c2000038c1008084c200002c410080cac2000040c100008dc2000000418340b0c2894140c0e7fb33c2f4fdef41
args: 9 0 0
check: grep -q '"request":{"status":\[2,1,1,1\]}' "$RPK_SIM_DIR/journal.jsonl"
check: grep -q '"request":{"ids":\[82\],"number":1,"sub":0}' "$RPK_SIM_DIR/journal.jsonl"
