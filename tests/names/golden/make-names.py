#!/usr/bin/env python3
"""Writes the names of the golden file, a line each: "first" or "last", a tab, the name. The same names every time.

They are a part of the listed names, a slip of the hand or ear for each, and names that are hard for other reasons.
The golden file is made of them by (in the project's folder, with `tavi` being the built command):

    python3 tests/names/golden/make-names.py > names.tsv
    tavi keys < names.tsv | paste names.tsv - > tests/names/golden/keys.tsv
"""

import pathlib
import random
import re

NAMES = pathlib.Path(__file__).resolve().parents[3] / "src" / "names"
EVERY_FIRST_NAME = 4
EVERY_SURNAME = 10

EAR = [("ph", "f"), ("ck", "k"), ("c", "k"), ("ie", "ei"), ("ei", "ie"), ("y", "i"), ("ee", "ea"), ("ou", "ow"),
       ("er", "ar"), ("son", "sen"), ("en", "an"), ("th", "t"), ("gh", ""), ("kn", "n"), ("wr", "r"), ("ll", "l"),
       ("tt", "t"), ("nn", "n"), ("ley", "ly"), ("a", "e"), ("e", "i"), ("o", "u"), ("s", "z"), ("t", "tt")]

HARD_FIRST = ["", "J", "Jo", "Éloïse", "E\u0301loi\u0308se", "Łukasz", "Zoë", "Siân", "Jean-Luc", "jean luc", "JEANLUC",
              "Mary Ann", "Anne-Marie", "D'Arcy", "Bjørn", "Jürgen", "Juergen", "Иван", "ИВАН", "Μαρία", "李", "ひろし",
              "محمد", "अमित", "김", "😀", "123", "'", "-", "Ann 2", "Q", "Xx", "Zzzzzz", "Bartholomew" * 12]
HARD_LAST = ["", "S", "Ng", "Wu", "O'Neil", "O’Neil", "ONeil", "O Neil", "MacDonald", "McDonald", "M'Donald", "Mc Donald",
             "MacCrae", "McRae", "St John", "Saint John", "St. John-Smith", "FitzGerald", "Fitz Gerald", "de la Mare",
             "van den Berg", "Vandenberg", "Müller", "Mueller", "Muller", "Łukasiewicz", "Núñez", "Sørensen", "Ångström",
             "A\u030Angstro\u0308m", "Straße", "Smith-Jones", "Smith Jones", "Smithjones", "Жуков", "жуков", "Παππάς",
             "王", "佐藤", "김철수", "אברהם", "😀😀", "42", "'", "Mbeki", "Cholmondeley", "Featherstonehaugh", "Abc" * 40]


def listed(*files):
    names = []
    for file in files:
        text = (NAMES / file).read_text(encoding="utf-8")
        rows = text[text.index("kRows[]") : text.index("};")]
        for literal in re.findall(r'"([^"]*)"', rows):
            names += re.split(r"[ /]+", literal.strip(" /"))
    return [name for name in names if name]


def by_hand(name, chance):
    at = chance.randrange(1, len(name))
    kind = chance.randrange(4)
    if kind == 0:
        return name[:at] + name[at + 1 :]
    if kind == 1:
        return name[:at] + name[at] + name[at:]
    if kind == 2 and at + 1 < len(name):
        return name[:at] + name[at + 1] + name[at] + name[at + 2 :]
    return name[:at] + chance.choice("abcdefghijklmnopqrstuvwxyz") + name[at + 1 :]


def by_ear(name, chance):
    fitting = [pair for pair in EAR if pair[0] in name[1:].lower()]
    if not fitting:
        return name + "e"
    old, new = chance.choice(fitting)
    at = name.lower().index(old, 1)
    return name[:at] + new + name[at + len(old) :]


def with_slips(names, every, chance):
    for name in names[::every]:
        yield name
        if len(name) > 2:
            yield (by_ear if chance.random() < 0.6 else by_hand)(name, chance)


def main():
    chance = random.Random(20)
    for name in with_slips(listed("FirstNames.cpp"), EVERY_FIRST_NAME, chance):
        print("first", name, sep="\t")
    surnames = listed("CommonSurnames.cpp", "SurnamesAToG.cpp", "SurnamesHToO.cpp", "SurnamesPToZ.cpp")
    for name in with_slips(surnames, EVERY_SURNAME, chance):
        print("last", name, sep="\t")
    for name in HARD_FIRST:
        print("first", name, sep="\t")
    for name in HARD_LAST:
        print("last", name, sep="\t")


if __name__ == "__main__":
    main()
