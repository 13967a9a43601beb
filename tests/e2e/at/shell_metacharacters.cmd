# The text reaches the shell unescaped: the shell expands $AT_SUFFIX.
env: AT_SUFFIX=+CSQ
args: 8 AT$AT_SUFFIX
check: printf 'AT+CSQ\r\n' | cmp - "$RPK_SIM_DIR/smd8"
