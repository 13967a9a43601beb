# No GPIO test set: the modem's "no such file" (2) is the error code.
args: 3 1
help: 3
