# WCDMA receive AGC of both chains.
setup: "$SIM" stats set 1 110 01a4b090c20000d4c2
args: 9 50 1
