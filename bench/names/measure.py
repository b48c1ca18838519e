#!/usr/bin/env python3
"""Measures the name keys on labelled pairs of names.

    measure.py DATA [TAVI]

DATA is a folder with the tab-separated files, each with a line of headings,
  first_name_variants.tsv, surname_variants.tsv    name, variant, kind: pairs that are the same name
  first_names.tsv, surnames.tsv                    name, share: how common a name is
  first_names_related.tsv, surnames_related.tsv    name, name2: pairs too closely related to count either way
TAVI is the built command (default: build/release/tavi).

For each of the two a table line: how many pairs, the recall by kind and weighted over the kinds, the collisions (the
probability that two members drawn by share have equal keys though their names are different and unrelated, in ten
thousand) and F, the harmonic mean of the recall and 0.002 / (0.002 + collisions).
"""

import collections
import pathlib
import subprocess
import sys

SETS = {
    "first": ("First names", "first_name", {"spelling": 0.4, "typo": 0.3, "transliteration": 0.1, "diminutive": 0.2}),
    "last": ("Surnames", "surname", {"spelling": 0.5, "typo": 0.35, "transliteration": 0.15}),
}
HALF_COLLISION = 0.002


def table(path):
    lines = path.read_text(encoding="utf-8").splitlines()
    heads = lines[0].split("\t")
    return [dict(zip(heads, line.split("\t"))) for line in lines[1:] if line]


def keys_of(tavi, mode, names):
    names = sorted(names)
    text = "".join(f"{mode}\t{name}\n" for name in names)
    run = subprocess.run([tavi, "keys"], input=text, capture_output=True, encoding="utf-8", check=True)
    return dict(zip(names, run.stdout.split("\n")))


def collisions(shares, related, keys):
    """Exact: all pairs of equal keys, less those of one name with itself and of related names."""
    total = sum(shares.values())
    by_key = collections.defaultdict(float)
    for name, share in shares.items():
        by_key[keys[name]] += share
    equal = sum(share * share for share in by_key.values())
    possible = total * total
    own = sum(share * share for share in shares.values())
    for one, other in related:
        both = 2 * shares[one] * shares[other]
        possible -= both
        if keys[one] == keys[other]:
            equal -= both
    return max(0.0, equal - own) / (possible - own)


def measure(data, tavi, mode):
    title, stem, weights = SETS[mode]
    pairs = table(data / f"{stem}_variants.tsv")
    shares = {row["name"]: float(row["share"]) for row in table(data / f"{stem}s.tsv")}
    close = [(row["name"], row["name2"]) for row in table(data / f"{stem}s_related.tsv")]
    close += [(row["name"], row["variant"]) for row in pairs]
    related = {tuple(sorted(pair)) for pair in close if pair[0] in shares and pair[1] in shares and pair[0] != pair[1]}
    names = set(shares) | {row["name"] for row in pairs} | {row["variant"] for row in pairs}
    keys = keys_of(tavi, mode, names)
    recalls = {}
    for kind in weights:
        of_kind = [row for row in pairs if row["kind"] == kind]
        found = sum(keys[row["name"]] == keys[row["variant"]] for row in of_kind)
        recalls[kind] = found / max(1, len(of_kind))
    recall = sum(weight * recalls[kind] for kind, weight in weights.items())
    collision = collisions(shares, related, keys)
    share = HALF_COLLISION / (HALF_COLLISION + collision)
    f = 2 * recall * share / (recall + share) if recall else 0.0
    cells = [title, str(len(pairs))] + [f"{recalls[kind]:.3f}" if kind in recalls else "-" for kind in SETS["first"][2]]
    return cells + [f"{recall:.3f}", f"{collision * 10000:.2f}", f"{f:.3f}"], f


def main():
    if len(sys.argv) < 2 or sys.argv[1] in ("-h", "--help"):
        sys.exit(__doc__)
    data = pathlib.Path(sys.argv[1])
    tavi = sys.argv[2] if len(sys.argv) > 2 else "build/release/tavi"
    heads = ["", "Pairs", "Spelling", "Typo", "Transliteration", "Diminutive", "Recall", "Collisions in 10,000", "F"]
    print("| " + " | ".join(heads) + " |")
    print("|---|" + "---:|" * (len(heads) - 1))
    fs = []
    for mode in SETS:
        cells, f = measure(data, tavi, mode)
        fs.append(f)
        print("| " + " | ".join(cells) + " |")
    print(f"\nF {sum(fs) / len(fs):.3f}")


if __name__ == "__main__":
    main()
