# The service answers with an error: the query reports it and stops.
setup: "$SIM" fault error 5 --request-id 4
args: 7 2 1
