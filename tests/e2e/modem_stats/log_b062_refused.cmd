# The canned packet under the LTE random-access code: its version 9 is refused.
args: 7 0 0xB062
