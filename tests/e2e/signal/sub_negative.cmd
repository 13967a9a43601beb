# A negative sub is a large unsigned one, printed signed.
args: 9 7 -1
