# Types above 2 do not exist.
args: 7 5 1
help: 7
