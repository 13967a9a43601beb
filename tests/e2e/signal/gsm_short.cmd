# Only the version byte: the first level is refused.
setup: "$SIM" stats set 0 111 01
args: 9 51 0
