# A 71-character path can be read: all 71 bytes travel, the log shows 70.
setup: "$SIM" efs set 0 /nv/item_files/modem/velmar/ppppppppppppppppppppppppppppppppppppppppppp 41 42
args: 4 4 0 /nv/item_files/modem/velmar/ppppppppppppppppppppppppppppppppppppppppppp
check: python3 "$CASE_DIR/../journal.py" req 1 u8@4=71 @5=2f6e762f6974656d5f66696c65732f6d6f64656d2f76656c6d61722f70707070707070707070707070707070707070707070707070707070707070707070707070707070707070 u8@76=0
