# Every section: the read position runs through main, diag, cm and uim.
args: 7 2 15
