"""What pandas does with a table: answers one command a line with one number a line.

Commands: read FILE; write FILE; sort COLUMN; describe.
"""

import sys

import pandas

frame = None
for line in sys.stdin:
    command, *argument = line.split()
    result = 0.0
    if command == "read":
        frame = pandas.read_csv(argument[0])
        result = frame.iloc[:, 0].sum()
    elif command == "write":
        frame.to_csv(argument[0], index=False)
    elif command == "sort":
        frame = frame.sort_values(frame.columns[int(argument[0])])
        result = frame.iloc[0, int(argument[0])]
    elif command == "describe":
        result = frame.describe().iloc[1, 0]
    print(repr(float(result)), flush=True)
