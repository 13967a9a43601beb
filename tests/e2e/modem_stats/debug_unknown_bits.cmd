# Bits above the four sections print the version alone.
args: 7 2 16
