# A 5G RSSI answer longer than its 20 bytes prints its metrics.
setup: "$SIM" stats set 1 94 01000000190468c266667cc271fddbc20000a0c17f7f7f7f
args: 9 7 1
