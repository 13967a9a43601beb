# The modem's clock: code 0x1D and eight bytes that change with every run, so
# the lines that show them are checked by shape only.
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
drop: len\(9\), data: 1D|^rsp data: 0x1D
args: 5 0 0 0 3000 0x1D
check: "$RPK" 5 0 0 0 3000 0x1D | grep -Eq '^rsp data: 0x1D( 0x[0-9A-F]{2}){8}$'
