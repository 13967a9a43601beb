args: 8
help: 8
out: extra_argument.out
