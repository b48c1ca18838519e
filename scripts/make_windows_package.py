#!/usr/bin/env python3
"""Puts what was built for Windows into the package that clubs and authors get.

    make_windows_package.py x64|x86 BUILD CLUB_FILE TARGET.zip

BUILD is the build folder of the kind; CLUB_FILE becomes the empty club file. scripts/package-windows calls this after
building everything.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
TEMPLATES = ROOT / "packaging" / "windows"
DESCRIPTION = ROOT / "src" / "automation" / "TaviMembership.idl"
STRIP = {"x64": "x86_64-w64-mingw32-strip", "x86": "i686-w64-mingw32-strip"}
# The same archive for the same contents.
MOMENT = (2000, 1, 1, 0, 0, 0)
# Marshals interfaces by what the type library says about them.
TYPE_LIBRARY_MARSHALER = "{00020424-0000-0000-C000-000000000046}"


def words_of_kind(kind):
    version = re.search(r"project\(TaviMembership VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
    return {"KIND": kind, "BITS": "64" if kind == "x64" else "32", "VERSION": version}


def entries_of_description():
    """What the interface description declares: the library, its classes that can be created, its interfaces."""
    text = DESCRIPTION.read_text(encoding="utf-8")
    number = r"uuid\(([0-9a-fA-F-]{36})\)"
    found = re.search(number + r", version\((\d+\.\d+)\), helpstring\(\"([^\"]*)\"\)\]\s*library", text)
    library = ("{" + found[1].upper() + "}", found[2], found[3])
    classes, interfaces = [], []
    for attributes, what, name in re.findall(r"\[([^\[\]]*)\]\s*(coclass|interface) (\w+)", text):
        identifier = re.search(number, attributes)
        if identifier is None:
            continue
        entry = ("{" + identifier[1].upper() + "}", name, re.search(r'helpstring\("([^"]*)"\)', attributes)[1])
        if what == "interface":
            interfaces.append(entry)
        elif "noncreatable" not in attributes:
            classes.append(entry)
    if len(classes) != 4 or len(interfaces) != 5:
        raise SystemExit(f"{DESCRIPTION}: {len(classes)} classes and {len(interfaces)} interfaces were found")
    return library, classes, interfaces


def registry_values(kind):
    """All that registration enters below the classes, as (key, name, text); the name is empty for a key's own value.

    The tests compare this with what the library itself enters.
    """
    (library, version, description), classes, interfaces = entries_of_description()
    file = "%here%\\TaviMembership.dll"
    for identifier, name, text in classes:
        program = "TaviMembership." + name
        key = "CLSID\\" + identifier
        yield from [(key, "", text), (key + "\\InprocServer32", "", file),
                    (key + "\\InprocServer32", "ThreadingModel", "Apartment"), (key + "\\ProgID", "", program),
                    (key + "\\Programmable", "", ""), (key + "\\TypeLib", "", library),
                    (key + "\\Version", "", version), (key + "\\VersionIndependentProgID", "", program),
                    (program, "", text), (program + "\\CLSID", "", identifier)]
    key = f"TypeLib\\{library}\\{version}"
    yield from [(key, "", description), (key + ("\\0\\win64" if kind == "x64" else "\\0\\win32"), "", file),
                (key + "\\FLAGS", "", "0"), (key + "\\HELPDIR", "", "%here%")]
    for identifier, name, _ in interfaces:
        key = "Interface\\" + identifier
        yield from [(key, "", name), (key + "\\ProxyStubClsid", "", TYPE_LIBRARY_MARSHALER),
                    (key + "\\ProxyStubClsid32", "", TYPE_LIBRARY_MARSHALER),
                    (key + "\\TypeLib", "", library), (key + "\\TypeLib", "Version", version)]


def opening(purpose, view):
    # The key of classes is the same for both kinds of programs; "view" tells them apart where it is not.
    return ["@echo off", f"rem {purpose}", "setlocal", 'set "here=%~dp0"', 'set "here=%here:~0,-1%"',
            'set "classes=HKCU\\Software\\Classes"', f'set "view=/reg:{view}"']


CLOSING = [":finished", 'if "%~1"=="" pause', "exit /b %result%"]


def register_for_me(kind):
    words = words_of_kind(kind)
    lines = opening("Registers TaviMembership.dll for the user alone. Needs no administrator rights.", words["BITS"])
    for key, name, text in registry_values(kind):
        which = f'/v "{name}"' if name else "/ve"
        lines += [f'reg add "%classes%\\{key}" {which} /t REG_SZ /d "{text}" /f %view% >nul', "if errorlevel 1 goto failed"]
    lines += [f"echo TaviMembership ({kind}) is registered for you.", "set result=0", "goto finished", ":failed",
              "echo The entries of TaviMembership could not be made in your part of the registry.", "set result=1"]
    return lines + CLOSING


def unregister_for_me(kind):
    """Names and type library are common to both kinds and go with the last of them."""
    words = words_of_kind(kind)
    (library, version, _), classes, interfaces = entries_of_description()
    own, other, other_bits = ("win64", "win32", 32) if kind == "x64" else ("win32", "win64", 64)
    lines = opening("Removes what register-for-me.cmd entered, and nothing else.", words["BITS"])
    lines += ["set result=0"]

    def remove(key):
        query = f'reg query "%classes%\\{key}" %view% >nul 2>nul'
        return [query, f'if not errorlevel 1 reg delete "%classes%\\{key}" /f %view% >nul', query,
                "if not errorlevel 1 set result=1"]

    for identifier, _, _ in classes:
        lines += remove("CLSID\\" + identifier)
    for identifier, _, _ in interfaces:
        lines += remove("Interface\\" + identifier)
    lines += remove(f"TypeLib\\{library}\\{version}\\0\\{own}")
    lines += [f'reg query "%classes%\\TypeLib\\{library}\\{version}\\0\\{other}" /reg:{other_bits} >nul 2>nul',
              "if not errorlevel 1 goto removed"]
    for _, name, _ in classes:
        lines += remove("TaviMembership." + name)
    lines += remove(f"TypeLib\\{library}")
    lines += [":removed", "if not %result%==0 goto failed",
              f"echo TaviMembership ({kind}) is no longer registered for you.", "goto finished", ":failed",
              "echo Some entries of TaviMembership could not be removed from your part of the registry."]
    return lines + CLOSING


def windows_text(text, words):
    """With its words put in and the ends of lines that Windows' own editor and command interpreter know."""
    for word, value in words.items():
        text = text.replace(f"@{word}@", value)
    return "\r\n".join(text.splitlines()).encode("utf-8") + b"\r\n"


def stripped(kind, file):
    with tempfile.TemporaryDirectory() as folder:
        target = pathlib.Path(folder) / file.name
        subprocess.run([STRIP[kind], "-o", target, file], check=True)
        return target.read_bytes()


def contents(kind, build, club_file):
    words = words_of_kind(kind)
    # The tools of the 32-bit kind have their own folder on 64-bit Windows; a 32-bit caller sees the 64-bit ones elsewhere.
    tools = "%SystemRoot%\\System32"
    other = "%SystemRoot%\\Sysnative" if kind == "x64" else "%SystemRoot%\\SysWOW64"
    generated = build / "src" / "automation" / "generated"
    for name in ("register.cmd", "unregister.cmd"):
        text = (TEMPLATES / name).read_text(encoding="ascii")
        text = text.replace('@TOOL_FOLDER@\\regsvr32.exe"\n',
                            f'{tools}\\regsvr32.exe"\nif exist "{other}\\regsvr32.exe" set "tool={other}\\regsvr32.exe"\n')
        yield name, windows_text(text, words)
    yield "register-for-me.cmd", windows_text("\n".join(register_for_me(kind)), {})
    yield "unregister-for-me.cmd", windows_text("\n".join(unregister_for_me(kind)), {})
    yield "README.txt", windows_text((TEMPLATES / "README.txt").read_text(encoding="ascii"), words)
    yield "LICENSE.txt", windows_text((ROOT / "LICENSE").read_text(encoding="utf-8"), {})
    yield "TaviMembership.dll", stripped(kind, build / "TaviMembership.dll")
    yield "tavi.exe", stripped(kind, build / "tavi.exe")
    yield "TaviMembership.tlb", (generated / "TaviMembership.tlb").read_bytes()
    yield "TaviMembership.h", (generated / "TaviMembership.h").read_bytes()
    yield "ClubMembers.mdb", club_file.read_bytes()
    for guide in ("windows.md", "operations.md"):
        yield f"docs/{guide}", windows_text((ROOT / "docs" / guide).read_text(encoding="utf-8"), {})
    for example in sorted((ROOT / "examples" / "windows").iterdir()):
        yield f"examples/{example.name}", windows_text(example.read_text(encoding="utf-8"), {})


def make_package(kind, build, club_file, target):
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in contents(kind, build, club_file):
            archive.writestr(zipfile.ZipInfo(f"TaviMembership-windows-{kind}/{name}", MOMENT), content,
                             compress_type=zipfile.ZIP_DEFLATED, compresslevel=9)


def main():
    if len(sys.argv) != 5 or sys.argv[1] not in STRIP:
        sys.exit(__doc__)
    make_package(sys.argv[1], *map(pathlib.Path, sys.argv[2:]))


if __name__ == "__main__":
    main()
