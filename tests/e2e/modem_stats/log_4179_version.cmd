# The self-test packet under 0x4179: its version byte is 9, which the parser refuses.
args: 7 0 0x4179
