# The modem returns two ids for one asked.
setup: "$SIM" fault stats-count 2 --count 1
args: 9 1 0
