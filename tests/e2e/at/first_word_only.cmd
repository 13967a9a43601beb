# A quoted argument with blanks sends only its first word.
args: 8 "AT+COPS=0 extra"
check: printf 'AT+COPS=0\r\n' | cmp - "$RPK_SIM_DIR/smd8"
