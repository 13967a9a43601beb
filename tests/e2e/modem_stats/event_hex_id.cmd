# The id may be hexadecimal (0x275 is event 629).
args: 7 1 0x275
