# An unknown subsystem: error 0x13 and the request's bytes.
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
args: 5 0 0 0 3000 0x4B 0x77 0x00 0x00
