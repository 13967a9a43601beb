# A callback answer above 10240 bytes is refused by the response check and
# not stored: the send ends by its time-out.
setup: "$SIM" diag answer 4b04 4b040e00 --size 12000
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
thread: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]: function exit
args: 5 0 0 0 50 0x4B 0x04 0x0E 0x00
help: 5
