# The self-test packet under 0xB0C2: its version byte is 9, which the parser refuses.
args: 7 0 0xB0C2
