#!/usr/bin/env python3
"""Drives tavi.exe under Wine as people and programs do, and reads what it wrote with another reader.

    command.py BUILD evening    a season from the empty file to its recovery, in folders and with names with accents
    command.py BUILD session    the example session over JSON-RPC prints what its documentation shows
    command.py BUILD console    the shell at a console reads and shows every letter
    command.py BUILD refusals   what cannot be done gives a clear error and the right exit code
    command.py BUILD outputs    output into a file, a closed pipe and a full disk
"""

import csv
import io
import os
import pathlib
import pty
import select
import shutil
import subprocess
import sys

SOURCE = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(SOURCE / "tests" / "automation"))
import under_wine  # noqa: E402  (its folder is known only now)

TIMEOUT = 300
CLUB = "C:\\Klub Zoë Łukasz"
TODAY = "2026-01-15"
MEMBERS = """club_number,ebu_number,title,first,initials,last,known_as,sex,active
901,00990101,Mrs,Éloïse,,D'Arcy,Ellie,F,y
902,,Mr,Łukasz,J,Wójcik,,M,y
903,00990103,Ms,Zoë,,Müller-Lüdenscheidt,,F,n
"""
EVENING = """<USEBIO Version="1.2">
<EVENT EVENT_TYPE="PAIRS">
<EVENT_DESCRIPTION>Smith & Sons’ cup</EVENT_DESCRIPTION><DATE>13/01/2026</DATE>
<PARTICIPANTS>
<PAIR><PAIR_NUMBER>1</PAIR_NUMBER><PERCENTAGE>62.5</PERCENTAGE><PLACE>1</PLACE>
<PLAYER><PLAYER_NAME>Éloïse D'Arcy</PLAYER_NAME></PLAYER><PLAYER><PLAYER_NAME>Łukasz Wójcik</PLAYER_NAME></PLAYER></PAIR>
<PAIR><PAIR_NUMBER>2</PAIR_NUMBER><PERCENTAGE>37.5</PERCENTAGE><PLACE>2</PLACE>
<PLAYER><PLAYER_NAME>Žofie Nováková</PLAYER_NAME></PLAYER><PLAYER><PLAYER_NAME>Vera Visitor</PLAYER_NAME></PLAYER></PAIR>
</PARTICIPANTS></EVENT></USEBIO>
"""


def expect(holds, what):
    if not holds:
        sys.exit("not so: " + what)


class Outcome:
    def __init__(self, arguments, done):
        self.command = "tavi " + " ".join(arguments)
        self.code = done.returncode
        self.out = done.stdout.decode("utf-8")
        self.error = done.stderr.decode("utf-8")
        expect(b"\r" not in done.stdout + done.stderr, f"{self.command} writes no carriage returns")

    def rows(self):
        """The values of tab-separated output, without the header."""
        return [line.split("\t") for line in self.out.split("\n")[1:-1]]

    def refused(self, code, *reasons):
        expect(self.code == code, f"{self.command} ends with {code}, not {self.code}: {self.out}{self.error}")
        for reason in reasons:
            expect(reason in self.error, f"{self.command} says \"{reason}\": {self.error}")


class Command:
    """tavi.exe with the club of one test."""

    def __init__(self, build, wine):
        self.program = build / "tavi.exe"
        self.wine = wine
        self.drive = wine.home / "drive_c"
        # What Wine itself starts must not have the pipes of a test, or their end would be that of Wine.
        for background in (["wineserver", "--persistent"], [under_wine.WINE, "cmd", "/c", "exit"]):
            subprocess.run(background, env=wine.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, timeout=TIMEOUT, check=True)

    def run(self, *arguments, club=CLUB, given=b""):
        everything = ["--db", club, "--today", TODAY, *arguments]
        done = subprocess.run([under_wine.WINE, str(self.program), *everything], env=self.wine.environment, cwd=self.drive,
                              input=given, capture_output=True, timeout=TIMEOUT, check=False)
        return Outcome(arguments, done)

    def succeed(self, *arguments, **more):
        outcome = self.run(*arguments, **more)
        expect(outcome.code == 0, f"{outcome.command} succeeds: {outcome.code} {outcome.out}{outcome.error}")
        return outcome

    def write(self, name, text):
        """A file below the drive C; its path there."""
        file = self.drive / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(text.encode("utf-8"))
        return "C:\\" + name.replace("/", "\\")

    def file_of(self, club=CLUB):
        return self.drive / club.removeprefix("C:\\") / "ClubMembers.mdb"


def second_reader(file, table):
    """The rows of a table as the independent reader sees them, by column."""
    done = subprocess.run(["mdb-export", "-T", "%Y-%m-%d", str(file), table], capture_output=True, check=True)
    return list(csv.DictReader(io.StringIO(done.stdout.decode("utf-8"))))


def check_against_second_reader(command, club=CLUB):
    file = command.file_of(club)
    members = command.succeed("sql", "Select MembershipNumber, FirstName, LastName, EBUNumber From Members", club=club)
    seen = [[row[name] for name in ("MembershipNumber", "FirstName", "LastName", "EBUNumber")]
            for row in second_reader(file, "Members")]
    expect(sorted(members.rows()) == sorted(seen), f"both readers find the same members of {club}")
    for table in ("Members", "Partnerships", "Competitions", "Results", "MasterPoints", "ClubNames"):
        count = command.succeed("sql", f"Select Count(*) From {table}", club=club).rows()[0][0]
        expect(int(count) == len(second_reader(file, table)), f"both readers count the rows of {table}")
    return seen


def long_path(command):
    """Folders that are longer than programs of old could name."""
    club = CLUB + "\\" + "\\".join(["Verzeichnis mit langem Namen é " + str(number) * 30 for number in range(5)])
    command.succeed("new", club=club)
    expect(command.succeed("sql", "Select Count(*) From Members", club=club).rows() == [["0"]], "it is a club")
    command.run("new", "--name", "Another", club=club).refused(1, "exists already")
    command.succeed("dump", club + "\\ClubMembers.mdb", club + "\\dump")
    command.run("dump", club + "\\ClubMembers.mdb", club + "\\dump").refused(1, "is not empty")


def other_computer(command):
    """Folders on other computers, which Wine has in a folder of its own."""
    share = command.wine.home / "dosdevices" / "unc" / "bridge-server" / "club"
    share.mkdir(parents=True)
    command.succeed("new", "--name", "Thornmère", club="\\\\bridge-server\\club\\Zoë")
    info = command.succeed("info", club="//bridge-server/club/Zoë/ClubMembers.mdb").out
    expect("Thornmère" in info and len(second_reader(share / "Zoë" / "ClubMembers.mdb", "ClubNames")) == 1,
           f"the club is on the other computer: {info}")
    command.succeed("dump", "//bridge-server/club/Zoë/ClubMembers.mdb", "//bridge-server/club/dump")
    expect((share / "dump" / "Members.tsv").is_file(), "the dump is on the other computer")


def bring_in(command):
    shutil.copytree(SOURCE / "examples" / "club" / "evenings", command.drive / "Übungen")
    for name in ("members.csv", "pairs.csv"):
        shutil.copy(SOURCE / "examples" / "club" / name, command.drive)
    command.succeed("new", "--name", "Thornmère Bridge Club", "--ebu", "12345")
    command.succeed("members", "import", "C:\\members.csv")
    command.succeed("pairs", "import", "C:\\pairs.csv")
    added = command.succeed("members", "import", command.write("Añadidos/młode.csv", MEMBERS))
    expect(added.rows()[0][1:] == ["3", "0", "0"], "three members are added")


def score(command):
    evenings = list((command.drive / "Übungen").iterdir())
    scored = command.succeed("score", "C:\\Übungen\\*.xml")
    expect(len(scored.rows()) == len(evenings), f"every evening is scored: {scored.out}")
    last = command.succeed("score", command.write("Übungen/Žofie.usebio", EVENING))
    expect("Éloïse D'Arcy" in last.out and "Žofie Nováková" in last.out, f"the ranking shows the players: {last.out}")
    names = command.succeed("sql", given=b"Select CompetitionName From Competitions\r\nWhere CompetitionDate = #2026-01-13#;\r\n")
    expect(names.rows() == [["Smith & Sons’ cup"]], f"the competition has its name: {names.out}")


def look(command):
    members = command.succeed("members", "--all").out
    for name in ("D'Arcy, Éloïse", "Wójcik, Łukasz", "Müller-Lüdenscheidt, Zoë"):
        expect(name in members, f"the list has {name}")
    expect("Zoë" not in command.succeed("members").out, "a retired member is not listed")
    found = command.succeed("find", "Lukasz", "Vojcik").out
    expect("Wójcik" in found, f"a misspelt name is found: {found}")
    expect("Łukasz" in command.succeed("handicaps").out, "the handicaps have the name")
    info = command.succeed("info").out
    expect("Thornmère Bridge Club" in info and "Klub Zoë Łukasz" in info, f"info names the club and its file: {info}")
    keys = command.succeed("keys", given="first\tZoë\r\nlast\tMüller\n".encode("utf-8"))
    expect(keys.out == "ZOE\nMILLER\n", f"two keys: {keys.out}")
    expect('"LastName": "Wójcik"' in command.succeed(
        "--json", "sql", "Select LastName From Members Where MembershipNumber = 902").out, "JSON has the name")


def tend(command):
    file = CLUB + "\\ClubMembers.mdb"
    expect("sound" in command.succeed("check", "--strict").out, "the file is sound")
    command.succeed("dump", file, "C:\\Võrdlus\\enne")
    command.succeed("compact")
    expect((command.file_of().parent / "ClubMembers.backup-1.mdb").is_file(), "the old file is kept")
    command.succeed("dump", file, "C:\\Võrdlus\\pärast")
    dumps = [{part.name: part.read_bytes() for part in (command.drive / "Võrdlus" / name).iterdir()}
             for name in ("enne", "pärast")]
    expect(dumps[0] == dumps[1] and "Wójcik".encode() in dumps[0]["Members.tsv"], "compacting changes no contents")
    expect(not any(b"\r" in text for text in dumps[0].values()), "dumps have no carriage returns")
    file_itself = command.file_of()
    file_itself.chmod(0o444)
    saved = command.succeed("recover", file, club="C:\\Ødelagt")
    file_itself.chmod(0o644)
    left = list((command.drive / "users").glob("*/Temp/tavi-recover-*"))
    left += (command.drive / "users").glob("*/AppData/Local/Temp/tavi-recover-*")
    expect(not left, f"no copy is left: {left}")
    expect(all(row[3] == "0" for row in saved.rows()), f"nothing is lost: {saved.out}")


def evening(command):
    usage = command.succeed("--help").out
    expect("Usage: tavi [OPTIONS] SUBCOMMAND" in usage and "score " in usage, f"the help is shown: {usage}")
    bring_in(command)
    score(command)
    look(command)
    seen = check_against_second_reader(command)
    expect(["902", "Łukasz", "Wójcik", ""] in seen, "the second reader has the names")
    tend(command)
    check_against_second_reader(command)
    expect(check_against_second_reader(command, "C:\\Ødelagt") == seen, "the recovered file has the same members")
    long_path(command)
    other_computer(command)
    leftovers = [file.name for file in command.file_of().parent.iterdir() if file.is_file()]
    expect(sorted(leftovers) == ["ClubMembers.backup-1.mdb", "ClubMembers.mdb"], f"nothing is left over: {leftovers}")


def session(command):
    wrapper = command.wine.home / "tavi"
    wrapper.write_text(f"#!/bin/sh\nexec wine '{command.program}' \"$@\"\n", encoding="utf-8")
    wrapper.chmod(0o755)
    example = SOURCE / "examples" / "rpc"
    done = subprocess.run([sys.executable, str(example / "session.py"), str(wrapper), CLUB], cwd=command.drive,
                          env=command.wine.environment, stdout=subprocess.PIPE, timeout=TIMEOUT, check=False)
    expected = (example / "expected.txt").read_text(encoding="utf-8")
    expect(done.returncode == 0 and done.stdout.decode("utf-8") == expected,
           "the session prints what is expected:\n" + done.stdout.decode("utf-8"))
    check_against_second_reader(command)


class Console:
    """tavi.exe as a person at a terminal has it."""

    def __init__(self, command, *arguments):
        self.shown = b""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(command.drive)
            os.execvpe(under_wine.WINE, [under_wine.WINE, str(command.program), "--db", CLUB, *arguments], command.wine.environment)

    def wait_for(self, text):
        """Reads on until a text is shown."""
        while text.encode("utf-8") not in self.shown:
            ready, _, _ = select.select([self.terminal], [], [], TIMEOUT)
            expect(ready, f"the console shows \"{text}\": {self.shown!r}")
            self.shown += os.read(self.terminal, 4096)
        self.shown = self.shown.partition(text.encode("utf-8"))[2]

    def enter(self, line):
        os.write(self.terminal, f"{line}\r".encode("utf-8"))

    def end(self):
        """The exit code."""
        try:
            while os.read(self.terminal, 4096):
                pass
        except OSError:  # nobody has the other end open any more
            pass
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])


def console(command):
    command.succeed("new", "--name", "Thornmère Bridge Club")
    shell = Console(command, "sql")
    shell.wait_for(".help tells more")
    shell.wait_for("tavi>")
    shell.enter("Insert Into Members (MembershipNumber, FirstName, LastName) Values (5, 'Zoë', 'Łukasz Ž');")
    shell.wait_for("tavi>")
    shell.enter("Select FirstName & '|' & LastName As Whole From Members;")
    shell.wait_for("Whole")
    shell.wait_for("Zoë|Łukasz Ž")
    shell.wait_for("tavi>")
    shell.enter("Select Nothing;")
    shell.wait_for("tavi:")
    shell.wait_for("tavi>")
    shell.enter(".quit")
    expect(shell.end() == 0, "the shell ends well")
    seen = check_against_second_reader(command)
    expect(seen == [["5", "Zoë", "Łukasz Ž", ""]], f"what was typed is stored: {seen}")


def refusals(command):
    nowhere = "C:\\Nirgendwo é"
    command.run("members", club=nowhere).refused(1, f"Could not find file '{nowhere}\\ClubMembers.mdb'")
    command.run("check", "C:\\fehlt é.mdb").refused(2, "Could not find file 'C:\\fehlt é.mdb'")
    command.run("recover", "C:\\fehlt é.mdb").refused(2, "C:\\fehlt é.mdb cannot be read: there is no such file")
    command.run("dump", "C:\\fehlt é.mdb", "C:\\out").refused(1, "Could not find file 'C:\\fehlt é.mdb'")
    command.run("info", club=command.write("Vergessen é/old.mdb", "x")).refused(1, "is no club's folder")
    command.run().refused(2, "A subcommand is required")
    command.run("frobnicate").refused(2)

    command.succeed("new")
    command.succeed("new")
    command.run("new", "--name", "Another").refused(1, f"{CLUB}\\ClubMembers.mdb exists already")
    command.run("recover", f"{CLUB.upper()}\\clubmembers.MDB").refused(2, "is the club's own file")
    command.run("new", club="C:\\bad|name").refused(1, "the folder C:\\bad|name cannot be made: ")
    command.run("score", "C:\\fehlt é.xml").refused(1, "C:\\fehlt é.xml: there is no such file")
    command.run("score", "C:\\*.xml").refused(1, "C:\\*.xml: there is no such file")
    command.run("members", "import", CLUB).refused(1, f"{CLUB}: is a folder")
    broken = command.write("Übel/é.xml", EVENING.replace("</PARTICIPANTS>", ""))
    command.run("score", broken).refused(1, f"{broken}:9: not well-formed XML")
    line = command.write("Übel/é.csv", MEMBERS + "x,,,No,,Number,,,y\n")
    command.run("members", "import", line).refused(1, f"{line}:5: ")
    command.run("sql", "Select Nothing From Members").refused(1, "Nothing")
    command.run("sql", given=b"Select * From Nowhere;").refused(1, "Nowhere")
    command.run("dump", f"{CLUB}\\ClubMembers.mdb", CLUB).refused(1, "is not empty")
    expect(command.succeed("sql", "Select Count(*) From Members").rows() == [["0"]], "nothing was stored")


def outputs(command):
    """Output that nobody reads any more, and output that finds no room."""
    command.succeed("new")
    everything = [under_wine.WINE, str(command.program), "--db", CLUB]

    def run_into(output, *arguments):
        return subprocess.run([*everything, *arguments], env=command.wine.environment, cwd=command.drive, stdout=output,
                              stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=TIMEOUT, check=False)

    for arguments in (["info"], ["sql", "Select * From Members"], ["--help"]):
        reader, writer = os.pipe()
        os.close(reader)
        done = run_into(writer, *arguments)
        os.close(writer)
        expect(done.returncode == 141 and done.stderr == b"",
               f"tavi {arguments} into a closed pipe ends quietly: {done.returncode} {done.stderr}")
    with open("/dev/full", "wb", buffering=0) as full:
        done = run_into(full, "info")
    message = b"tavi: the output could not be written: "
    expect(done.returncode == 1 and done.stderr.startswith(message),
           f"output on a full disk is an error: {done.returncode} {done.stderr}")
    # More than one buffer, into a file.
    file = command.drive / "out.txt"
    with open(file, "wb") as out:
        done = run_into(out, "sql", "Select 'x' & String(60000, 'y') As T")
    expect(done.returncode == 0 and file.read_bytes() == b"T\nx" + 60000 * b"y" + b"\n", "all of it is in the file")


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    case = {"evening": evening, "session": session, "console": console, "refusals": refusals, "outputs": outputs}[sys.argv[2]]
    wine = under_wine.Wine(build, "command-" + sys.argv[2])
    # Wine takes the encoding of arguments and file names from here.
    wine.environment["LC_ALL"] = "C.UTF-8"
    try:
        case(Command(build, wine))
    finally:
        wine.end()


if __name__ == "__main__":
    main()
