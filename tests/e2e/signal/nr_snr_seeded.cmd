# 5G SNR per chain.
setup: "$SIM" stats set 0 112 020000000000ac41000050c000000000b6f3ef41
args: 9 8 0
