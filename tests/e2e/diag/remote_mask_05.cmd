# Remote processors 1 and 3; only the lowest bit is named.
setup: "$SIM" diag set remote_mask 05
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
args: 5 0 0 0 3000 0x1C
