# No SAR service: the client cannot be opened within its 4 ms, -1 is printed.
setup: "$SIM" fault down --service sar
args: 5 8
out: during_restart_sar.out
