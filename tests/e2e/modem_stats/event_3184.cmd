# The canned packet as a new NR cell: its first word is the SSB frequency.
args: 7 1 3184
