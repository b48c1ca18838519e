#!/usr/bin/env python3
"""Runs one test of the Windows programs under Wine.

    under_wine.py BUILD script         regsvr32 in, the script suites, regsvr32 out
    under_wine.py BUILD client         the same with the early-bound program
    under_wine.py BUILD apartments     the same with the program that uses several threads
    under_wine.py BUILD registration   entering and removing the server leaves the registry as it was
    under_wine.py BUILD types          what the type library says is what type-library.txt says
    under_wine.py BUILD run PROGRAM... a program

Each test has a Wine home of its own below BUILD/wine, a fresh copy of one that is made once.
"""

import difflib
import fcntl
import os
import pathlib
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
TIMEOUT = 590
# The Wine for the kind of program that is tested.
WINE = os.environ.get("TAVI_WINE", "wine")
# Wine checks the heap then and spoils what is freed, so that a use of it shows. With the programs of whole rooms that
# would take minutes; these are the ones about threads and objects.
HEAP_CHECK = "-all,warn+heap"
WITH_HEAP_CHECK = ("test_automation", "test_threads")


def environment_of(home):
    environment = dict(
        os.environ, WINEPREFIX=str(home), WINEDEBUG="-all", WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=")
    environment.pop("DISPLAY", None)
    return environment


def new_home(homes):
    """A home that nothing has run in; whoever needs it first makes it."""
    home = homes / "new"
    homes.mkdir(parents=True, exist_ok=True)
    with open(homes / "new.lock", "w", encoding="ascii") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not home.exists():
            unfinished = homes / "unfinished"
            shutil.rmtree(unfinished, ignore_errors=True)
            unfinished.mkdir()
            environment = environment_of(unfinished)
            subprocess.run([WINE, "wineboot", "--init"], env=environment, timeout=TIMEOUT, check=True)
            # The registry is written when the last program has ended.
            subprocess.run(["wineserver", "--wait"], env=environment, timeout=TIMEOUT, check=True)
            unfinished.rename(home)
    return home


def link_or_copy(source, target):
    """Programs and libraries are the same in all homes; what Wine writes, it writes in place."""
    if pathlib.Path(source).suffix in (".dll", ".exe"):
        os.link(source, target)
    else:
        shutil.copy2(source, target)


class Wine:
    def __init__(self, build, name):
        homes = build / "wine"
        self.home = homes / name
        shutil.rmtree(self.home, ignore_errors=True)
        shutil.copytree(new_home(homes), self.home, symlinks=True, copy_function=link_or_copy)
        self.folder = self.home / "drive_c" / "club"
        self.environment = environment_of(self.home)

    def run(self, *command, folder=None, fail=True):
        line = " ".join(map(str, command))
        try:
            done = subprocess.run(
                [WINE, *map(str, command)], env=self.environment, cwd=folder or self.home, timeout=TIMEOUT,
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        except subprocess.TimeoutExpired as stopped:
            print((stopped.stdout or b"").decode("utf-8", errors="replace"))
            sys.exit(f"{line} did not end in {TIMEOUT} seconds and was stopped; above is what it wrote")
        text = done.stdout.decode("utf-8", errors="replace")
        if fail and done.returncode != 0:
            print(text)
            sys.exit(f"{line} ended with {done.returncode}")
        return text

    def make_club(self, build):
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir()
        self.run(build / "club_maker.exe", "C:\\club")

    def registry(self):
        """All that the registry holds of classes, as lines."""
        target = self.home / "classes.reg"
        self.run("reg", "export", "HKEY_LOCAL_MACHINE\\Software\\Classes", "C:\\classes.reg", "/y")
        text = (self.home / "drive_c" / "classes.reg").read_bytes().decode("utf-16")
        del target
        return text.splitlines()

    def stop(self):
        """Ends what runs in this home; the next program starts all anew."""
        subprocess.run(["wineserver", "--kill"], env=self.environment, check=False)

    def end(self):
        self.stop()
        shutil.rmtree(self.home, ignore_errors=True)


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def drive(wine, build, *commands):
    """Runs programs that print their counts of checks in the last line, each with a club file of its own."""
    library = windows_path(build / "TaviMembership.dll")
    wine.run("regsvr32", "/s", library)
    failed = []
    for command in commands:
        wine.make_club(build)
        text = wine.run(*command, "C:\\club", fail=False)
        print(text)
        last = text.strip().splitlines()[-1] if text.strip() else ""
        if " checks, 0 failures" not in last:
            failed.append(str(command[-1]))
    wine.run("regsvr32", "/u", "/s", library)
    if failed:
        sys.exit(f"not all checks held: {', '.join(failed)}")


def script(name):
    return ["cscript", "//nologo", windows_path(HERE / name)]


def types(wine, build):
    wanted = (HERE / "type-library.txt").read_text(encoding="utf-8").splitlines()
    wanted = [line for line in wanted if not line.startswith("#")]
    text = wine.run(build / "type_library.exe", windows_path(build / "TaviMembership.dll"))
    found = [line.rstrip() for line in text.splitlines()]
    if found != wanted:
        sys.exit("\n".join(difflib.unified_diff(wanted, found, "type-library.txt", "the type library", n=0, lineterm="")))


def registration(wine, build):
    library = windows_path(build / "TaviMembership.dll")
    before = wine.registry()
    print(wine.run(build / "registration_client.exe", library))
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
    wine = Wine(build, kind + "-" + pathlib.Path(sys.argv[3] if kind == "run" else kind).stem)
    if kind != "run" or pathlib.Path(sys.argv[3]).stem in WITH_HEAP_CHECK:
        wine.environment["WINEDEBUG"] = HEAP_CHECK
    try:
        if kind == "script":
            drive(wine, build, script("suite.vbs"), script("arguments.vbs"), script("faults.vbs"), script("suite.js"))
        elif kind == "client":
            drive(wine, build, [build / "early_client.exe"])
        elif kind == "apartments":
            drive(wine, build, [build / "apartments_client.exe"])
        elif kind == "types":
            types(wine, build)
        elif kind == "registration":
            registration(wine, build)
        else:
            print(wine.run(pathlib.Path(sys.argv[3]).resolve(), *sys.argv[4:]))
    finally:
        wine.end()


if __name__ == "__main__":
    main()
