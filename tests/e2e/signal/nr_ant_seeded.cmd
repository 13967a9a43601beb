# Antenna switch state before and after, rx 0 to 3 then tx 0 and 1.
setup: "$SIM" stats set 0 113 01000000000102030405060708090aff
args: 9 9 0
