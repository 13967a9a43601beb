# Only the low 16 bits of the id count: 0x1B870 is 0xB870.
args: 7 0 0x1B870
out: log_between_codes.out
