# A cleared bit does not skip its section: the diag fields are read right after the version.
args: 7 2 2
