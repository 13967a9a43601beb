# No metric has option 10.
args: 9 10 0
