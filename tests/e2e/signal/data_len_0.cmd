# An empty record is refused with the same line.
setup: "$SIM" stats set 0 111
args: 9 51 0
