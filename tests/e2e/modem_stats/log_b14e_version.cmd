# The self-test packet under 0xB14E: its version byte is 9, which the parser refuses.
args: 7 0 0xB14E
