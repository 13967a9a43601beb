# The 5G readers name their chains snr0 to snr3 when refusing.
setup: "$SIM" stats set 0 112 020000000000803f000000400000
args: 9 8 0
