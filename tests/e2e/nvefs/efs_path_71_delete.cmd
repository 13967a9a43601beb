# ... nor deleted.
setup: "$SIM" efs set 0 /nv/item_files/modem/velmar/ppppppppppppppppppppppppppppppppppppppppppp 41 42
args: 4 6 0 /nv/item_files/modem/velmar/ppppppppppppppppppppppppppppppppppppppppppp
check: python3 "$CASE_DIR/../journal.py" count 0
check: "$SIM" efs get 0 /nv/item_files/modem/velmar/ppppppppppppppppppppppppppppppppppppppppppp >/dev/null
help: 4
