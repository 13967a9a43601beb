# Past the last category.
args: 10
