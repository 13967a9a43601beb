# The NV answer claims an item of 0xffffffff bytes (data_len_all, record offset
# 4, packet offset 28): only the 365 bytes of the result buffer are copied and
# printed.
setup: "$SIM" fault corrupt --patch 28:ffffffff
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=corrupt
