#!/usr/bin/env python3
"""Runs one test of the Windows programs under Wine.

    under_wine.py BUILD script         regsvr32 in, the VBScript suite, regsvr32 out
    under_wine.py BUILD client         the same with the early-bound program
    under_wine.py BUILD registration   entering and removing the server leaves the registry as it was
    under_wine.py BUILD run PROGRAM... a program

Each test has a Wine home of its own below BUILD/wine, made anew.
"""

import os
import pathlib
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
TIMEOUT = 300


class Wine:
    def __init__(self, build, name):
        self.home = build / "wine" / name
        shutil.rmtree(self.home, ignore_errors=True)
        self.home.mkdir(parents=True)
        self.folder = self.home / "drive_c" / "club"
        self.environment = dict(
            os.environ, WINEPREFIX=str(self.home), WINEDEBUG="-all", WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=")
        self.environment.pop("DISPLAY", None)
        self.run("wineboot", "--init")

    def run(self, *command, fail=True):
        done = subprocess.run(
            ["wine", *map(str, command)], env=self.environment, cwd=self.home, timeout=TIMEOUT,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        text = done.stdout.decode("utf-8", errors="replace")
        if fail and done.returncode != 0:
            print(text)
            sys.exit(f"{' '.join(map(str, command))} ended with {done.returncode}")
        return text

    def make_club(self, build):
        self.folder.mkdir()
        self.run(build / "club_maker.exe", "C:\\club")

    def registry(self):
        """All that the registry holds of classes, as lines."""
        target = self.home / "classes.reg"
        self.run("reg", "export", "HKEY_LOCAL_MACHINE\\Software\\Classes", "C:\\classes.reg", "/y")
        text = (self.home / "drive_c" / "classes.reg").read_bytes().decode("utf-16")
        del target
        return text.splitlines()

    def end(self):
        subprocess.run(["wineserver", "--kill"], env=self.environment, check=False)
        shutil.rmtree(self.home, ignore_errors=True)


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def drive(wine, build, command):
    library = windows_path(build / "TaviMembership.dll")
    wine.make_club(build)
    wine.run("regsvr32", "/s", library)
    text = wine.run(*command, fail=False)
    print(text)
    wine.run("regsvr32", "/u", "/s", library)
    last = text.strip().splitlines()[-1] if text.strip() else ""
    if " checks, 0 failures" not in last:
        sys.exit("not all checks held")


def registration(wine, build):
    library = windows_path(build / "TaviMembership.dll")
    before = wine.registry()
    wine.run("regsvr32", "/s", library)
    entered = wine.registry()
    wine.run("regsvr32", "/s", library)
    if wine.registry() != entered:
        sys.exit("registering again changed the entries")
    for text in ("88FA9BA1-A3F3-47AE-A57D-5FA91276F083", "TaviMembership.MembershipDatabase",
                 "CD603914-4761-472B-BDA3-F543D0ABC6C1"):
        if text.upper() not in "\n".join(set(entered) - set(before)).upper():
            sys.exit(f"{text} was not entered")
    wine.run("regsvr32", "/u", "/s", library)
    left = sorted(set(wine.registry()) ^ set(before))
    if left:
        sys.exit("the registry is not as it was:\n" + "\n".join(left))


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    kind = sys.argv[2]
    wine = Wine(build, kind + "-" + pathlib.Path(sys.argv[-1]).stem)
    try:
        if kind == "script":
            drive(wine, build, ["cscript", "//nologo", windows_path(HERE / "suite.vbs"), "C:\\club"])
        elif kind == "client":
            drive(wine, build, [build / "early_client.exe", "C:\\club"])
        elif kind == "registration":
            registration(wine, build)
        else:
            print(wine.run(*sys.argv[3:]))
    finally:
        wine.end()


if __name__ == "__main__":
    main()
