#!/usr/bin/env python3
"""Runs services_client.exe under Wine: "services.py BUILD PART..." with some of its parts.

The Wine home gets a desktop that nobody sees, so that message boxes stand there as they do on any other.
"""

import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "automation"))
import under_wine  # noqa: E402  (its folder is known only now)


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    parts = sys.argv[2:]
    wine = under_wine.Wine(build, "services-" + parts[0])
    try:
        wine.run("reg", "add", "HKCU\\Software\\Wine\\Drivers", "/v", "Graphics", "/d", "null", "/f")
        wine.stop()
        wine.run("regsvr32", "/s", under_wine.windows_path(build / "TaviMembership.dll"))
        (wine.home / "drive_c" / "club").mkdir()
        text = wine.run(build / "services_client.exe", "C:\\club", *parts, fail=False)
        print(text)
        last = text.strip().splitlines()[-1] if text.strip() else ""
        if " checks, 0 failures" not in last or last.startswith("0 "):
            sys.exit("not all checks held")
    finally:
        wine.end()


if __name__ == "__main__":
    main()
