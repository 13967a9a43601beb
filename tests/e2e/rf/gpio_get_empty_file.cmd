# An empty file answers a first chunk of 0 bytes, which the EFS read refuses.
setup: "$SIM" efs set 0 /nv/item_files/modem/velmar/rf_ant_port_config
args: 3 1
help: 3
