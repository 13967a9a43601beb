# The modem answers for the other subscription.
setup: "$SIM" fault stats-sub 1
args: 9 9 0
