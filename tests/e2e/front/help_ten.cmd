# Past the last category.
args: 10
out: help_none.out
