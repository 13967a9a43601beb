# GSM receive levels, primary and diversity.
setup: "$SIM" stats set 0 111 010000a1c20080a7c2
args: 9 51 0
