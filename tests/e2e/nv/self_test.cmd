# The self-test on the factory image: the eleven items, then the first 124
# bytes of the buffer (the last item read, NV_OEM_ITEM_8_I) with 'd' in front
# written as NV_OEM_ITEM_6_I, the items again, and the not-supported line.
args: 1 1
check: python3 "$CASE_DIR/../journal.py" count 23 -- each request_id=1 data_len=428 -- req 1 data=0100000046120000 -- req 11 data=01000000cc1a0000 -- req 12 data=02000000ca1a0000000000007c00000064696e616c5f71633d504153533b7061636b3d323032332d31312d30395431343a32323a30355a3b6c6f743d4c323331312d30393337
check: "$SIM" nv get 0 6858 | grep -q "^64 69 6e 61 6c 5f"
help: 1
