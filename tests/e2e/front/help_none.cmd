# No category at all prints the whole help.
args:
