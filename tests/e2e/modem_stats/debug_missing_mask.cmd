# No mask: the query refuses, the command prints FAIL and its help.
args: 7 2
help: 7
