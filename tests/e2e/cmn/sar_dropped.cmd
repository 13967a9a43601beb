# The SAR service closes the connection instead of answering: the send fails
# and -1 is printed.
setup: "$SIM" fault drop-after 0 --service sar
args: 5 8
