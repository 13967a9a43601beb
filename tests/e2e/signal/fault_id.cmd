# The modem answers with another record.
setup: "$SIM" fault stats-id 83
args: 9 0 1
