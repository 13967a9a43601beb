# The command must be a single argument.
args: 8 AT+CSQ extra
check: test ! -e "$RPK_SIM_DIR/smd8"
help: 8
