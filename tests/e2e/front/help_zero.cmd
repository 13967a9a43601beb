# Category 0 is no category.
args: 0
out: help_none.out
