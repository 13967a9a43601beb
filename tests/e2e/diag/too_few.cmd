# No bytes: the note alone, result 0, so no help follows.
args: 5 0 0 0 3000
