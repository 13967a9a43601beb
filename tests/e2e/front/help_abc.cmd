# Not a number: atoi gives 0.
args: abc
out: help_none.out
