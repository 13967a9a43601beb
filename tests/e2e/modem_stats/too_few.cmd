# No id: the self-test refuses, the command prints FAIL and its help.
args: 7 1
help: 7
