#!/usr/bin/env python3
"""Writes TextTables.inc, the ranges that Text.cpp looks characters up in:

    python3 TextTables.py > TextTables.inc

The tables follow version 14 of the Unicode character database, so the interpreter must be one that
carries it (3.11).  A later version means a change of what is a name character, and is a decision.
"""

import sys
import unicodedata

VERSION = "14.0.0"


def category(c):
    return unicodedata.category(chr(c))


def is_punctuation(c):
    return 0xA1 <= c <= 0xBF or c in (0xD7, 0xF7) or category(c)[0] in "PS"


def is_space(c):
    return c in (0x85, 0xA0) or category(c) == "Zs"


def is_zero_width(c):
    # The soft hyphen takes a column.  The vowels and final consonants of decomposed Hangul are
    # drawn within the syllable that their initial consonant opens.
    if c == 0xAD:
        return False
    return category(c) in ("Cc", "Cf", "Me", "Mn", "Zl", "Zp") or 0x1160 <= c <= 0x11FF


def is_wide(c):
    # The two supplementary planes of ideographs are wide as a whole, assigned or not.
    if 0x20000 <= c <= 0x2FFFD or 0x30000 <= c <= 0x3FFFD:
        return True
    return category(c) != "Cn" and unicodedata.east_asian_width(chr(c)) in "WF"


def ranges(test, first, last):
    found = []
    for c in range(first, last + 1):
        if not test(c):
            continue
        if found and found[-1][1] == c - 1:
            found[-1][1] = c
        else:
            found.append([c, c])
    return found


def write(name, type_name, found):
    print(f"constexpr {type_name} {name}[] = {{")
    line = "   "
    for first, last in found:
        item = f" {{0x{first:04X}, 0x{last:04X}}},"
        if len(line) + len(item) > 100:
            print(line)
            line = "   "
        line += item
    print(line)
    print("};")


def main():
    if unicodedata.unidata_version != VERSION:
        sys.exit(f"The character database is {unicodedata.unidata_version}, not {VERSION}.")
    print("// Written by TextTables.py from the Unicode character database, version 14.0.0.")
    print()
    write("c_punctuation", "Range16", ranges(is_punctuation, 0x80, 0xFFFF))
    print()
    write("c_space", "Range16", ranges(is_space, 0x80, 0xFFFF))
    print()
    write("c_zeroWidth", "Range32", ranges(is_zero_width, 0x80, 0x10FFFF))
    print()
    write("c_wide", "Range32", ranges(is_wide, 0x80, 0x10FFFF))


if __name__ == "__main__":
    main()
