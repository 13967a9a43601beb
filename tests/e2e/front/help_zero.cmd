# Category 0 is no category.
args: 0
