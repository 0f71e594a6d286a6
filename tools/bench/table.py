"""Prints the rows of several files as one table."""

import sys

import rows

print(rows.table([row for path in sys.argv[1:] for row in rows.load(path)]))
