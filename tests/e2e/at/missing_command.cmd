args: 8
