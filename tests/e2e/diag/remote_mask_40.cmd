# Bit 6 has no name but still registers processor 7.
setup: "$SIM" diag set remote_mask 0x40
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
args: 5 0 0 0 3000 0x1C
