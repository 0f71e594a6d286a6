#!/usr/bin/python3
"""Cuts the icon font to the glyphs that the program draws.

Reads the symbol table (system symbol name, icon name), looks the icons' code points up in the font
package's own list, writes the cut font under a family name of its own, so that it never meets an
installed copy of the whole font, and the table that the program maps names with.
"""

import argparse
import re
import sys

from fontTools import subset
from fontTools.ttLib import TTFont


def read_table(path):
    rows = []
    with open(path, encoding="utf-8") as table:
        for number, line in enumerate(table, 1):
            words = line.split()
            if not words or words[0].startswith("#"):
                continue
            if len(words) != 2:
                sys.exit(f"{path}:{number}: a symbol and an icon expected")
            if any(symbol == words[0] for symbol, _ in rows):
                sys.exit(f"{path}:{number}: {words[0]} stands there twice")
            rows.append(tuple(words))
    return rows


def read_code_points(path):
    with open(path, encoding="utf-8") as names:
        return {name: int(code, 16) for name, code in re.findall(r'"([^"]+)":\s*([0-9a-f]+)', names.read())}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--font", required=True)
    parser.add_argument("--code-points", required=True)
    parser.add_argument("--table", required=True)
    parser.add_argument("--family", required=True)
    parser.add_argument("--font-out", required=True)
    parser.add_argument("--table-out", required=True)
    arguments = parser.parse_args()

    code_points = read_code_points(arguments.code_points)
    # Timestamps would make two builds of the same source differ.
    font = TTFont(arguments.font, recalcTimestamp=False)
    glyphs = font.getBestCmap()

    rows = []
    for symbol, icon in read_table(arguments.table):
        code = code_points.get(icon)
        if code is None or code not in glyphs:
            sys.exit(f"{symbol}: the font has no icon named {icon}")
        rows.append((symbol, code))

    options = subset.Options()
    options.layout_features = []
    options.name_IDs = [1, 2, 4, 6]
    options.notdef_outline = True
    cutter = subset.Subsetter(options)
    cutter.populate(unicodes=[code for _, code in rows])
    cutter.subset(font)
    for record in font["name"].names:
        if record.nameID in (1, 4, 6):
            text = arguments.family.replace(" ", "") if record.nameID == 6 else arguments.family
            font["name"].setName(text, record.nameID, record.platformID, record.platEncID, record.langID)
    font.save(arguments.font_out)

    with open(arguments.table_out, "w", encoding="utf-8") as table:
        for symbol, code in sorted(rows):
            table.write(f'SymbolRow{{"{symbol}", 0x{code:04x}}},\n')


if __name__ == "__main__":
    main()
