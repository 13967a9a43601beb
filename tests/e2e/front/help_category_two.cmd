# There is no category 2.
args: 2 1
out: help_none.out
