#!/usr/bin/env python3
"""Writes CollationTable.cpp from the table of text key codes.

    make_collation_table.py general-legacy-collation.tsv > CollationTable.cpp

The input has one line for each UTF-16 code unit, or for a run of ignored ones, with tab-separated fields; '-' stands
for an empty field and bytes are hexadecimal:
    first last class elements inline diacritic modifier special kana
Classes: S, I, Z, Q make collation elements, U is a special character, P a combining mark, X is ignored. How the codes
become a key is described in Collation.cpp.
"""

import sys

BLOCK = 256

# What the classes are in C++: the short names stand for the values of CollationKind.
KINDS = {"S": "E", "I": "E", "Z": "E", "Q": "E", "U": "S", "P": "C", "X": "I"}
SHORT_NAMES = {"E": "Element", "S": "Special", "C": "Combining", "I": "Ignored"}
DEFAULT_DIACRITIC = 2


def field_bytes(field):
    return b"" if field == "-" else bytes.fromhex(field)


def read_codes(path):
    """For each code unit its first two inline bytes as a number, and its trait."""
    codes = {}
    with open(path, encoding="ascii") as lines:
        for line in lines:
            if line.startswith("#") or line.startswith("first"):
                continue
            first, last, kind, elements, inline, diacritic, modifier, special, kana = line.rstrip("\n").split("\t")
            for unit in range(int(first, 16), int(last, 16) + 1):
                if unit in codes:
                    sys.exit(f"code unit {unit:04X} stands in the table twice")
                codes[unit] = code_of(kind, int(elements), field_bytes(inline), field_bytes(diacritic),
                                      field_bytes(modifier), field_bytes(special), kana)
    if len(codes) != 65536:
        sys.exit(f"the table has {len(codes)} code units instead of 65536")
    return [codes[unit] for unit in range(65536)]


def code_of(kind, elements, inline, diacritic, modifier, special, kana):
    if len(inline) > 4 or 0 in inline[:1] + inline[2:] or elements > 3 or (diacritic and len(diacritic) != elements):
        sys.exit("an element is larger than the table can hold")
    weights = list(diacritic) or [DEFAULT_DIACRITIC] * elements
    if len(weights) > 2 and weights[2] != DEFAULT_DIACRITIC:
        sys.exit("a third element has a weight of its own")
    weights = (weights + [DEFAULT_DIACRITIC] * 2)[:2]
    tail = list(inline[2:]) + [0] * (2 - len(inline[2:]))
    value = (modifier or special or b"\0")[0]
    trait = (KINDS[kind], elements, *weights, *tail, value, 0 if kana == "-" else int(kana))
    return int.from_bytes(inline[:2], "big"), trait


def share_blocks(values):
    """Splits a list into blocks; returns the distinct ones and, for each block, which of them it is."""
    blocks, numbers = [], []
    for start in range(0, len(values), BLOCK):
        block = values[start:start + BLOCK]
        if block not in blocks:
            blocks.append(block)
        numbers.append(blocks.index(block))
    return blocks, numbers


def write_numbers(values):
    line = ""
    for value in values:
        text = f"{value},"
        if len(line) + len(text) > 120:
            print(line)
            line = ""
        line += text
    print(line)


def write_array(declaration, values):
    print(f"\nconst {declaration} = {{")
    write_numbers(values)
    print("};")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    codes = read_codes(sys.argv[1])
    plain = ("E", 1, DEFAULT_DIACRITIC, DEFAULT_DIACRITIC, 0, 0, 0, 0)
    traits = [plain] + sorted({trait for _, trait in codes} - {plain})
    number_of = {trait: number for number, trait in enumerate(traits)}
    inline_blocks, inline_numbers = share_blocks([inline for inline, _ in codes])
    trait_blocks, trait_numbers = share_blocks([number_of[trait] for _, trait in codes])

    print("// Written by make_collation_table.py. Do not edit.")
    print('#include "access/index/CollationTable.h"')
    print("\n// clang-format off")
    print("namespace tavi::access::collation_table {\n")
    print("namespace {")
    for short, name in SHORT_NAMES.items():
        print(f"constexpr CollationKind {short} = CollationKind::{name};")
    print("}  // namespace")
    write_array("std::uint8_t kInlineBlockOf[256]", inline_numbers)
    write_array("std::uint8_t kTraitBlockOf[256]", trait_numbers)
    write_array(f"CollationTrait kTraits[{len(traits)}]", ["{" + ",".join(map(str, trait)) + "}" for trait in traits])
    write_array(f"std::uint16_t kTraitBlocks[{len(trait_blocks) * BLOCK}]", sum(trait_blocks, []))
    write_array(f"std::uint16_t kInlineBlocks[{len(inline_blocks) * BLOCK}]", sum(inline_blocks, []))
    print("\n}  // namespace tavi::access::collation_table")


if __name__ == "__main__":
    main()
