# The modem returns no ids.
setup: "$SIM" fault stats-empty
args: 9 0 0
