# ... but not written: refused before any request.
args: 4 5 0 /nv/item_files/modem/velmar/ppppppppppppppppppppppppppppppppppppppppppp 1
check: python3 "$CASE_DIR/../journal.py" count 0
help: 4
