#!/usr/bin/env python3
"""Gives arguments of a type library a double as default, which the compiler of interface descriptions cannot write.

    set_double_defaults.py LIBRARY RESULT DEFAULT COUNT

In LIBRARY, as the compiler wrote it, exactly COUNT arguments are texts with the default DEFAULT, a number of four
characters such as "-1.0": a text of this length takes as many bytes as a double. In RESULT they are doubles with this
number as default, and nothing else is changed. Whatever is not as expected ends it with an error and without RESULT.

The parts of the file that matter (all numbers little-endian, positions from its beginning unless said otherwise):

    0x00   "MSFT"
    0x14   flags; with 0x100 the head is four bytes longer
    0x20   how many types there are
    0x54   4 bytes for each type
    ...    16 bytes for each segment, position and length first; types are the first segment, custom data the twelfth

A type takes 100 bytes; at 4 is where its members are, at 24 how many functions and at 26 how many variables it has.
There stand 4 bytes with the length of what follows, then the functions; behind it 12 bytes for each member. A function:

     0     length in bytes (16 bits)
    16     flags; with 0x1000 arguments have defaults
    20     number of arguments (16 bits)
    end    for each argument 4 bytes where its default is in the custom data, where there are defaults; then for each
           12 bytes, of which the first four are its type

A default in the custom data, filled up with the letter W, of a text and of a double:

    08 00  04 00 00 00  2d 31 2e 30  57 57      "-1.0"
    05 00  00 00 00 00 00 00 f0 bf   57 57      -1.0
"""

import pathlib
import struct
import sys

HEAD, HEAD_WITH_HELP = 0x54, 0x58
HELP_FLAG = 0x100
TYPE_SIZE, SEGMENT_SIZE, ARGUMENT_SIZE = 100, 16, 12
TYPES, CUSTOM_DATA = 0, 11
DEFAULTS_FLAG = 0x1000
TEXT_ARGUMENT, DOUBLE_ARGUMENT = bytes.fromhex("08000880"), bytes.fromhex("05000580")
TEXT, DOUBLE = 8, 5


class Unexpected(Exception):
    """The library is not as the compiler writes it."""


def number(library, position, size=4):
    if position < 0 or position + size > len(library):
        raise Unexpected(f"it ends before {position + size:#x}")
    return int.from_bytes(library[position:position + size], "little")


def segment(library, index):
    head = HEAD_WITH_HELP if number(library, 0x14) & HELP_FLAG else HEAD
    entry = head + 4 * number(library, 0x20) + SEGMENT_SIZE * index
    position, length = number(library, entry), number(library, entry + 4)
    if position + length > len(library):
        raise Unexpected(f"segment {index} ends at {position + length:#x}, behind the end")
    return position, length


def functions(library):
    """Where each function begins."""
    position, length = segment(library, TYPES)
    for place in range(position, position + length, TYPE_SIZE):
        count, variables = number(library, place + 24, 2), number(library, place + 26, 2)
        if count + variables == 0:
            continue
        function = number(library, place + 4) + 4
        end = function + number(library, function - 4)
        if end + 12 * (count + variables) > len(library):
            raise Unexpected(f"the members at {function:#x} end behind the end")
        for _ in range(count):
            yield function
            function += number(library, function, 2)


def text_defaults(library):
    """(where the argument is, where its default is in the custom data) of each text that has a default."""
    for function in functions(library):
        count = number(library, function + 20, 2)
        if not number(library, function + 16) & DEFAULTS_FLAG:
            continue
        arguments = function + number(library, function, 2) - ARGUMENT_SIZE * count
        for index in range(count):
            argument = arguments + ARGUMENT_SIZE * index
            if library[argument:argument + 4] == TEXT_ARGUMENT:
                default = number(library, arguments - 4 * count + 4 * index)
                if default != 0xFFFFFFFF:
                    yield argument, default


def with_double_defaults(library, default, count):
    """The library with `count` texts that have the default `default` as doubles. Raises Unexpected."""
    if len(default) != 4:
        raise Unexpected(f'the default "{default}" has not four characters')
    if library[:4] != b"MSFT":
        raise Unexpected("it does not begin with MSFT")
    text = struct.pack("<HI4s", TEXT, 4, default.encode("ascii")) + b"WW"
    double = struct.pack("<Hd", DOUBLE, float(default)) + b"WW"
    start, length = segment(library, CUSTOM_DATA)
    found = [(argument, start + place) for argument, place in text_defaults(library)
             if place + len(text) <= length and library[start + place:start + place + len(text)] == text]
    if len(found) != count:
        raise Unexpected(f'{len(found)} texts have the default "{default}", not {count}')
    records = {place for _, place in found}
    if library.count(text) != len(records):
        raise Unexpected(f'"{default}" stands in it {library.count(text)} times, not {len(records)}')
    result = bytearray(library)
    for argument, place in found:
        result[argument:argument + 4] = DOUBLE_ARGUMENT
        result[place:place + len(text)] = double
    return bytes(result)


def main(arguments):
    if len(arguments) != 4:
        sys.exit(__doc__)
    library, result, default, count = arguments
    try:
        pathlib.Path(result).unlink(missing_ok=True)
        pathlib.Path(result).write_bytes(with_double_defaults(pathlib.Path(library).read_bytes(), default, int(count)))
    except (OSError, ValueError, Unexpected) as problem:
        sys.exit(f"set_double_defaults.py: {library}: {problem}")


if __name__ == "__main__":
    main(sys.argv[1:])
