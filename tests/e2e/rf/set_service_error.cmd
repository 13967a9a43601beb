# A set the service refuses: the request-id-4 failure line and the client's -3.
setup: "$SIM" fault error 94 --request-id 4
args: 3 3 1 4 0x3
help: 3
