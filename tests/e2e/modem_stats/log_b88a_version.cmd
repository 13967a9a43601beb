# The self-test packet under 0xB88A: its 32-bit version word reads 262153, which the parser refuses.
args: 7 0 0xB88A
