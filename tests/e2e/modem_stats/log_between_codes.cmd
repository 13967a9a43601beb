# A code between two table rows prints the dispatcher line only.
args: 7 0 0xB870
