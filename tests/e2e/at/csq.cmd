# The AT device receives exactly the command, a carriage return and echo's newline.
args: 8 AT+CSQ
check: printf 'AT+CSQ\r\n' | cmp - "$RPK_SIM_DIR/smd8"
