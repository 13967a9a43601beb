# The mask is decimal: 0x0f reads as 0, which asks for the support status.
args: 7 2 0x0f
