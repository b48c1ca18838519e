#!/usr/bin/env python3
"""Makes the sample club: members.csv, pairs.csv and a season of evenings as USEBIO files.

Everybody and everything in it is invented. The same seed gives the same bytes. Percentages come from boards that are
really played out: each pair's score on a board is its strength and some luck, and match points follow from the scores.
"""

import csv
import datetime
import pathlib
import random
from xml.sax.saxutils import escape

HERE = pathlib.Path(__file__).resolve().parent
SEED = 20250917
CLUB = "Hollowbrook Bridge Club"
FIRST_EVENING = datetime.date(2025, 9, 17)
EVENINGS = 30
ROUNDS_OF_BOARDS = 8
BOARDS_A_ROUND = 3

# title, first name, initials, surname, familiar name, sex, governing-body number, strength
PEOPLE = [
    ("Mrs", "Agnes", "M", "Holloway", "", "F", "771003", 4.0),
    ("Mr", "Bernard", "", "Holloway", "", "M", "771014", 3.0),
    ("Dr", "Charlotte", "E", "O'Rourke", "Lottie", "F", "771025", 6.5),
    ("Mr", "Declan", "", "O'Rourke", "", "M", "771036", 2.0),
    ("Mr", "Edward", "J", "Pemberton", "Ted", "M", "771047", 5.0),
    ("Mrs", "Felicity", "", "Pemberton", "", "F", "771058", -1.0),
    ("Mr", "Giles", "", "MacIntyre", "", "M", "771069", 1.0),
    ("Mrs", "Heather", "R", "McIntyre", "", "F", "771070", -2.0),
    ("Ms", "Imogen", "", "Saint-Clair", "", "F", "771081", 3.5),
    ("Mr", "James", "", "Saint-Clair", "Jim", "M", "771092", 0.0),
    ("Mrs", "Kateřina", "", "Nováková", "", "F", "771107", 2.5),
    ("Mr", "Lars", "", "Bjørnstad", "", "M", "771118", -3.0),
    ("Mrs", "Mary", "A", "Thornley", "Molly", "F", "771129", 0.5),
    ("Mr", "Norman", "", "Thornley", "", "M", "771130", -4.0),
    ("Mrs", "Olwen", "", "Llewellyn", "", "F", "771141", 1.5),
    ("Mr", "Percival", "T", "Llewellyn", "Percy", "M", "771152", -1.5),
    ("Mr", "Quentin", "", "de la Haye", "", "M", "771163", 2.0),
    ("Mrs", "Rosalind", "", "de la Haye", "", "F", "771174", 1.0),
    ("Mr", "Samir", "", "Chatterjee", "", "M", "771185", 5.5),
    ("Mrs", "Tanvi", "", "Chatterjee", "", "F", "771196", 4.5),
    ("Miss", "Ursula", "", "Beckwith", "", "F", "771201", -5.0),
    ("Mr", "Victor", "", "Oyelaran", "", "M", "771212", 3.0),
    ("Mrs", "Winifred", "", "Ashcombe-Lee", "Freda", "F", "771223", -6.0),
    ("Mr", "Xavier", "", "Ashcombe-Lee", "", "M", "771234", -0.5),
    ("Mrs", "Yolanda", "", "Marchetti", "", "F", "771245", 0.0),
    ("Mr", "Zachary", "", "Underhill", "Zak", "M", "771256", -2.5),
    ("Mrs", "Beatrice", "", "Fairclough", "", "F", "771267", 1.0),
    ("Mr", "Alan", "", "Fairclough", "", "M", "771278", -7.0),
    ("Mrs", "Joyce", "", "Winterbourne", "", "F", "", -1.0),
    ("Mr", "Harold", "", "Winterbourne", "Harry", "M", "771290", -3.5),
    ("Mr", "Tomasz", "", "Żukowski", "", "M", "771306", 4.0),
    ("Ms", "Ingrid", "", "Käferstein", "", "F", "771317", 2.0),
]

# positions in PEOPLE of those who mostly play together, and the name of the pair if it has one
PARTNERSHIPS = [
    (0, 1, ""), (2, 4, ""), (3, 8, ""), (5, 12, ""), (6, 7, "The Macs"), (9, 30, ""), (10, 11, ""), (13, 28, ""),
    (14, 15, ""), (16, 17, ""), (18, 19, ""), (20, 22, ""), (21, 31, ""), (23, 24, ""), (25, 26, ""), (27, 29, ""),
]

VISITORS = [("Gwen", "Tasker", "882004", 1.0), ("Roy", "Tasker", "882015", -1.0), ("Ann", "Other", "", 0.0)]


class Person:
    def __init__(self, number, row):
        (self.title, self.first, self.initials, self.last, self.familiar, self.sex, self.national, self.strength) = row
        self.number = number

    def written(self):
        return f"{self.familiar or self.first} {self.last}"


def write_members(people):
    with open(HERE / "members.csv", "w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow("club_number ebu_number title first initials last known_as sex email phone mobile join_date "
                        "member_type house address town postcode active".split())
        for index, p in enumerate(people):
            user = f"{p.first}.{p.last}".lower().replace(" ", "").replace("'", "")
            mail = f"{user}@example.org" if user.isascii() and index % 4 else ""
            joined = FIRST_EVENING - datetime.timedelta(days=400 + 211 * index)
            writer.writerow([p.number, p.national, p.title, p.first, p.initials, p.last, p.familiar, p.sex, mail,
                             f"01632 960{index:03}", "", joined.isoformat(), "Standard", "", f"{index + 1} Brook Lane",
                             "Hollowbrook", f"HB{1 + index % 9} {1 + index % 7}AA", "y"])


def write_pairs(people):
    with open(HERE / "pairs.csv", "w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow("club_number_1 club_number_2 player_1 player_2 known_as active".split())
        for one, two, name in PARTNERSHIPS:
            writer.writerow([people[one].number, people[two].number, people[one].written(), people[two].written(), name,
                             "y"])


def evening_pairs(people, visitors, rng):
    """The pairs of one evening: most regular ones, some mixed from those who came alone, perhaps visitors."""
    pairs, alone = [], []
    for one, two, _ in PARTNERSHIPS:
        chance = rng.random()
        if chance < 0.72:
            pairs.append([people[one], people[two]])
        elif chance < 0.9:
            alone.append(people[one] if rng.random() < 0.5 else people[two])
    if rng.random() < 0.2:
        pairs.append(visitors[:2])
    if len(alone) % 2 and rng.random() < 0.5:
        alone.append(visitors[2])
    rng.shuffle(alone)
    pairs += [alone[i:i + 2] for i in range(0, len(alone) - 1, 2)]
    for pair in pairs:
        if rng.random() < 0.3:
            pair.reverse()
    rng.shuffle(pairs)
    return pairs[:len(pairs) // 2 * 2]


def play(pairs, rng):
    """Each pair's match points and how many it could have won: every board is played at all tables."""
    tables = len(pairs) // 2
    points = [0.0] * len(pairs)
    possible = [0] * len(pairs)
    strength = [sum(p.strength for p in pair) / 2 for pair in pairs]
    order = list(range(len(pairs)))
    for _ in range(ROUNDS_OF_BOARDS):
        fixed, rest = order[0], order[1:]
        order = [fixed] + rest[-1:] + rest[:-1]
        for _ in range(BOARDS_A_ROUND):
            scores = []
            for table in range(tables):
                north, east = order[table], order[-1 - table]
                luck = rng.gauss(0, 22) + 2.2 * (strength[north] - strength[east])
                scores.append((round(luck / 4), north, east))
            for score, north, east in scores:
                won = sum(2 if score > other else 1 if score == other else 0 for other, n, _ in scores if n != north)
                top = 2 * (tables - 1)
                points[north] += won
                points[east] += top - won
                possible[north] += top
                possible[east] += top
    return points, possible


def ranking(points, possible):
    percent = [round(100 * p / q, 2) for p, q in zip(points, possible)]
    places = {}
    for index, value in enumerate(percent):
        better = sum(1 for other in percent if other > value)
        places[index] = (better + 1, percent.count(value) > 1)
    return percent, places


def write_evening(day, name, pairs, percent, places):
    awards = {1: 36, 2: 24, 3: 16, 4: 8}
    lines = ['<?xml version="1.0" encoding="UTF-8"?>', '<USEBIO Version="1.2">', "  <CLUB>",
             f"    <CLUB_NAME>{escape(CLUB)}</CLUB_NAME>", "    <CLUB_ID_NUMBER>779001</CLUB_ID_NUMBER>", "  </CLUB>",
             '  <EVENT EVENT_TYPE="PAIRS">', "    <BOARD_SCORING_METHOD>MATCH_POINTS</BOARD_SCORING_METHOD>",
             f"    <EVENT_DESCRIPTION>{escape(name)}</EVENT_DESCRIPTION>", f"    <DATE>{day:%d/%m/%Y}</DATE>",
             "    <WINNER_TYPE>1</WINNER_TYPE>", "    <MPS_AWARDED_FLAG>Y</MPS_AWARDED_FLAG>", "    <PARTICIPANTS>"]
    for index, pair in sorted(enumerate(pairs), key=lambda item: places[item[0]]):
        place, tied = places[index]
        lines += ["      <PAIR>", f"        <PAIR_NUMBER>{index + 1}</PAIR_NUMBER>",
                  f"        <PERCENTAGE>{percent[index]:.2f}</PERCENTAGE>",
                  f"        <PLACE>{place}{'=' if tied else ''}</PLACE>"]
        if place in awards:
            lines += ["        <MASTER_POINTS>", f"          <MASTER_POINTS_AWARDED>{awards[place]}</MASTER_POINTS_AWARDED>",
                      "          <MASTER_POINT_TYPE>BLACK</MASTER_POINT_TYPE>", "        </MASTER_POINTS>"]
        for p in pair:
            lines += ["        <PLAYER>", f"          <PLAYER_NAME>{escape(p.written())}</PLAYER_NAME>"]
            if p.national:
                lines.append(f"          <NATIONAL_ID_NUMBER>{p.national:0>8}</NATIONAL_ID_NUMBER>")
            lines.append("        </PLAYER>")
        lines.append("      </PAIR>")
    lines += ["    </PARTICIPANTS>", "  </EVENT>", "</USEBIO>", ""]
    (HERE / "evenings" / f"{day:%Y-%m-%d}.xml").write_text("\n".join(lines), encoding="utf-8", newline="\n")


def main():
    rng = random.Random(SEED)
    people = [Person(11 + 3 * index, row) for index, row in enumerate(PEOPLE)]
    visitors = [Person(0, ("", first, "", last, "", "", national, strength)) for first, last, national, strength in VISITORS]
    (HERE / "evenings").mkdir(exist_ok=True)
    write_members(people)
    write_pairs(people)
    for week in range(EVENINGS):
        day = FIRST_EVENING + datetime.timedelta(weeks=week)
        name = "Wednesday Pairs" if week % 10 != 9 else f"Hollowbrook Cup, heat {week // 10 + 1}"
        pairs = evening_pairs(people, visitors, rng)
        percent, places = ranking(*play(pairs, rng))
        write_evening(day, name, pairs, percent, places)


if __name__ == "__main__":
    main()
