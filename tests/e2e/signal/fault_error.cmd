# The query call itself fails with the modem's code.
setup: "$SIM" fault error 94 --service stats
args: 9 50 0
