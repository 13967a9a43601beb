# The answer is cut inside its data TLV (the header agrees with the cut): the
# TLV runs past the end, the framework refuses the answer (-45), a failed send
# for the client (-3 → -103).
setup: "$SIM" fault corrupt --truncate 100
args: 4 1 0 550
check: python3 "$CASE_DIR/../journal.py" req 1 fault=corrupt
help: 4
