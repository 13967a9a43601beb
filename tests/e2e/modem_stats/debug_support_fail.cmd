# A refused packet on the modem side turns the support verdict to FAIL.
setup: "$SIM" set stats.main.g_pk_version_not_support_num 3
args: 7 2 0
