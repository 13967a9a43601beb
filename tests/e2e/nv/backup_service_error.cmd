# A failed backup prints the client's code and no file path.
setup: "$SIM" fault error 94 --request-id 1
args: 1 2
check: test ! -e "$RPK_SIM_DIR/qcn.bin"
