# Types above 2 do not exist.
args: 7 5 1
