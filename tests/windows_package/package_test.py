#!/usr/bin/env python3
"""Uses the package as a club does, under Wine: package_test.py x64|x86 BUILD.

The package is made, unpacked into a folder with blanks and accents, registered for the user and for everybody, called
by name, and removed again; the registry has to be as it was. This Wine looks for classes among those of the machine
alone, so what is entered for the user is compared with what is entered, and found, there.
"""

import pathlib
import shutil
import sys
import unittest
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path += [str(HERE.parent / "automation"), str(HERE.parents[1] / "scripts")]
import make_windows_package  # noqa: E402
from under_wine import Wine  # noqa: E402

KIND, BUILD = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
FOLDER = "Café Müller & Söhne (1)"
CLUB = "Club d'Été"
MEMBERS = "club_number,first,last\n7,Agnes,Holloway\n8,Niall,O'Neil\n"
# What scripts print under Wine has no accents in every locale.
EXPECTED = ["7\tAgnes Holloway\t50.00", "8\tNiall O'Neil\t50.00"]
PER_USER, MACHINE = "HKEY_CURRENT_USER\\Software\\Classes", "HKEY_LOCAL_MACHINE\\Software\\Classes"
LIBRARY = "{CC2E8982-45EA-4B2D-805C-D41DB1E09BE7}"
# Belong to Windows; they stay when something had to be entered below them.
CONTAINERS = {"CLSID", "INTERFACE", "TYPELIB"}


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.wine = Wine(BUILD, "package")
        drive = cls.wine.home / "drive_c"
        # Windows has made it when a user comes in.
        cls.wine.run("reg", "add", PER_USER, "/f")
        # The script host enters itself when it first runs.
        (drive / "nothing.vbs").write_text("WScript.Quit 0\n")
        cls.wine.run("cscript", "//nologo", "C:\\nothing.vbs")
        cls.club = drive / CLUB
        cls.club.mkdir()
        cls.wine.run(BUILD / "tavi.exe", "--db", f"C:\\{CLUB}", "new")
        archive = drive / "package.zip"
        make_windows_package.make_package(KIND, BUILD, cls.club / "ClubMembers.mdb", archive)
        with zipfile.ZipFile(archive) as package:
            package.extractall(drive)
        (drive / f"TaviMembership-windows-{KIND}").rename(drive / FOLDER)
        cls.folder = drive / FOLDER
        (cls.club / "members.csv").write_text(MEMBERS, encoding="utf-8")

    @classmethod
    def tearDownClass(cls):
        cls.wine.end()

    def command(self, name, fail=True):
        return self.wine.run("cmd", "/c", name, "quiet", folder=self.folder, fail=fail)

    def keys(self, root):
        """The values below a root, as (key, name, text), keys and numbers in upper case."""
        self.wine.run("reg", "export", root, "C:\\classes.reg", "/y")
        text = (self.wine.home / "drive_c" / "classes.reg").read_bytes().decode("utf-16")
        found, key = set(), ""
        for line in text.replace("\\\r\n  ", "").splitlines():
            if line.startswith("["):
                key = line[len(root) + 2:-1].upper()
                found.add((key, None, None))
            elif "=" in line:
                name, _, value = line.partition("=")
                found.add((key, "" if name == "@" else name.strip('"'), value))
        return found

    def members(self):
        script = f"C:\\{FOLDER}\\examples\\members.vbs"
        return self.wine.run("cscript", "//nologo", script, f"C:\\{CLUB}").splitlines()

    def test_1_the_files_are_there_with_the_ends_of_lines_of_windows(self):
        for name in ("README.txt", "LICENSE.txt", "register.cmd", "register-for-me.cmd", "docs/windows.md"):
            content = (self.folder / name).read_bytes()
            self.assertEqual(content.count(b"\n"), content.count(b"\r\n"), name)
            self.assertNotIn(b"@", content.replace(b"@echo", b""), name) if name.endswith(".cmd") else None
        self.assertIn(b"64" if KIND == "x64" else b"32", (self.folder / "README.txt").read_bytes().splitlines()[0])

    def test_2_the_command_fills_the_empty_club_file(self):
        program = f"C:\\{FOLDER}\\tavi.exe"
        self.wine.run(program, "--db", f"C:\\{CLUB}", "members", "import", f"C:\\{CLUB}\\members.csv")
        self.assertIn("O'Neil", self.wine.run(program, "--db", f"C:\\{CLUB}", "members"))

    def test_3_registering_for_one_user_enters_the_same_as_for_everybody(self):
        machine, user = self.keys(MACHINE), self.keys(PER_USER)
        self.assertIn("registered for you", self.command("register-for-me.cmd"))
        self.assertEqual(machine, self.keys(MACHINE))
        for_me = self.keys(PER_USER) - user
        self.assertIn("no longer registered", self.command("unregister-for-me.cmd"))
        self.assertEqual(user, {entry for entry in self.keys(PER_USER) if entry in user or entry[0] not in CONTAINERS})

        self.assertIn("registered for all users", self.command("register.cmd"))
        for_all = self.keys(MACHINE) - machine
        self.assertEqual(EXPECTED, self.members())
        self.assertEqual(EXPECTED, self.wine.run(BUILD / "members_example.exe", f"C:\\{CLUB}").splitlines())
        self.assertIn("no longer registered", self.command("unregister.cmd"))
        self.assertEqual(machine, self.keys(MACHINE))

        # This Wine enters type libraries and interfaces for programs of the other kind as well, and flags the library
        # as one that is on disk.
        for_all = {(key, name, '"0"' if key.endswith("\\FLAGS") and text == '"8"' else text)
                   for key, name, text in for_all if not key.startswith("WOW6432NODE\\")}
        self.assertGreater(len(for_all), 60)
        self.assertEqual(sorted(map(str, for_all)), sorted(str(entry) for entry in for_me if entry[0] not in CONTAINERS))

    def test_4_what_is_common_to_both_kinds_stays_while_the_other_one_is_registered(self):
        machine, user = self.keys(MACHINE), self.keys(PER_USER)
        other_library = "win64" if KIND == "x86" else "win32"
        other_class = MACHINE + "\\Wow6432Node\\CLSID\\{88FA9BA1-A3F3-47AE-A57D-5FA91276F083}"
        if KIND == "x64":  # 32-bit Windows has no other kind.
            self.wine.run("reg", "add", f"{other_class}\\InprocServer32", "/ve", "/d", "other.dll", "/f")
            self.command("register.cmd")
            self.command("unregister.cmd")
            kept = {key for key, _, _ in self.keys(MACHINE) - machine}
            self.assertIn("TAVIMEMBERSHIP.MEMBERSHIPDATABASE\\CLSID", kept)
            self.wine.run("reg", "delete", other_class, "/f")
            self.command("register.cmd")
            self.command("unregister.cmd")
            self.assertEqual(machine, self.keys(MACHINE))

        library = f"{PER_USER}\\TypeLib\\{LIBRARY}\\1.0\\0\\{other_library}"
        self.wine.run("reg", "add", library, "/ve", "/d", "other.dll", "/f")
        self.command("register-for-me.cmd")
        self.command("unregister-for-me.cmd")
        kept = {key for key, _, _ in self.keys(PER_USER) - user}
        self.assertIn("TAVIMEMBERSHIP.MEMBERSHIPDATABASE\\CLSID", kept)
        self.assertFalse([key for key in kept if key.startswith(("CLSID\\", "INTERFACE\\"))])
        self.wine.run("reg", "delete", library, "/f")
        self.command("register-for-me.cmd")
        self.command("unregister-for-me.cmd")
        self.assertEqual(user, {entry for entry in self.keys(PER_USER) if entry in user or entry[0] not in CONTAINERS})

    def test_5_what_is_not_there_is_said(self):
        (self.folder / "TaviMembership.dll").rename(self.folder / "away.dll")
        done = self.command("register.cmd", fail=False)
        self.assertIn("could not register", done)
        (self.folder / "away.dll").rename(self.folder / "TaviMembership.dll")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], failfast=True)
