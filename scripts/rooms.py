"""The rooms of the house, read from the build's own files: the calls of tavi_room in src/**/CMakeLists.txt."""

import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent


class Room:
    """`name` and `uses` are names of libraries without "tavi_"; `inside` are those that it keeps to itself."""

    def __init__(self, name, what=""):
        self.name, self.what = name, what
        self.uses, self.inside = [], []

    @property
    def path(self):
        """The room's folder below src."""
        return self.name.replace("access_sql_", "access/sql/").replace("access_", "access/").replace("_", "/")


def read_rooms():
    """All rooms by name; one that is built differently on Windows is the same room."""
    rooms = {}
    for file in sorted((ROOT / "src").rglob("CMakeLists.txt")):
        text = file.read_text(encoding="utf-8")
        for call in re.findall(r"^\s*tavi_room\((.*?)\)\s*$", text, re.DOTALL | re.MULTILINE):
            name = call.split()[0].removeprefix("tavi_")
            room = rooms.setdefault(name, Room(name))
            what = re.search(r'FOR\s+"([^"]*)"', call)
            room.what = room.what or (what.group(1) if what else "")
            room.uses += named_behind("USES", call)
            room.inside += named_behind("INSIDE", call)
        for name, uses in re.findall(r"target_link_libraries\(tavi_(\w+)(.*?)\)", text):
            if name in rooms:
                rooms[name].uses += re.findall(r"\btavi_(\w+)", uses)
    # The automation server's library is made in a way of its own.
    rooms["automation"] = Room("automation", "TaviMembership.dll: the facade for programs on Windows")
    rooms["automation"].uses = ["composition", "platform_windows"]
    for room in rooms.values():
        room.uses = sorted({use for use in room.uses if use in rooms})
        room.inside = sorted({use for use in room.inside if use in rooms})
    return rooms


def named_behind(keyword, call):
    """The rooms that a call of tavi_room lists behind a keyword."""
    part = re.search(rf"\b{keyword}\s+([^A-Z\")]*)", call)
    return re.findall(r"\btavi_(\w+)", part.group(1)) if part else []


def below(rooms, name):
    """All rooms that a room stands on, those inside others included."""
    found = set(rooms[name].uses) | set(rooms[name].inside)
    for use in list(found):
        found |= below(rooms, use)
    return found


def in_sight(rooms, name):
    """The rooms that a room may include: those that it uses, and what these show of those below them."""
    def shown(use):
        return {use}.union(*(shown(further) for further in rooms[use].uses))

    return set().union(*(shown(use) for use in rooms[name].uses + rooms[name].inside))
