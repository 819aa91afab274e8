#!/usr/bin/env python3
"""Checks that every include points down the house: a room includes itself and the floors below it, never a room
beside it or above it; that the FTP engine knows nothing of the toolkit, and the component nothing of its widgets.

Usage: floors.py SOURCE_FOLDER"""
import pathlib
import re
import sys

FLOORS = [
    {"app"},
    {"remote", "transfer", "local", "sites"},
    {"session"},
    {"dialogs"},
    {"i18n"},
    {"shell", "controls", "inet"},
    {"platform"},
    {"base"},
]
FLOOR_OF = {room: number for number, rooms in enumerate(FLOORS) for room in rooms}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
WIDGETS = re.compile(r"^Q(Widget|Application|Label|PushButton|ListView|ListWidget|MessageBox|MainWindow|Dialog|Action|Menu)")


def complaints(source):
    count = 0
    for path in sorted(source.rglob("*")):
        if path.suffix not in (".h", ".cpp") or len(path.relative_to(source).parts) < 2:
            continue
        name = path.relative_to(source)
        room = name.parts[0]
        engine = name.parts[:2] == ("inet", "ftp")
        count += 1
        if room not in FLOOR_OF:
            yield f"{name}: {room} is no room of the house"
            continue
        for mark, include in INCLUDE.findall(path.read_text(encoding="utf-8")):
            if mark == "<":
                if engine and re.match(r"Q[A-Za-z]", include):
                    yield f"{name}: the engine includes <{include}>"
                if room == "inet" and WIDGETS.match(include):
                    yield f"{name}: the component includes <{include}>"
                continue
            other = include.split("/")[0]
            if other == room or "/" not in include and include.startswith("ui_"):
                continue
            if other not in FLOOR_OF:
                yield f'{name}: "{include}" is not written from the source folder'
            elif FLOOR_OF[other] <= FLOOR_OF[room]:
                yield f'{name}: "{include}" does not point down'
            if engine and other == "base" and include.split("/")[1] in ("byte_text.h", "conversions.h", "formats.h",
                                                                         "run_time_error.h"):
                yield f'{name}: the engine includes "{include}", which needs the toolkit'
    if count < 10:
        yield f"only {count} files were found below {source}"


def main():
    found = list(complaints(pathlib.Path(sys.argv[1])))
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
