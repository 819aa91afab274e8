#!/usr/bin/python3
"""Packs a folder into a zip archive whose bytes depend on the folder's files alone: pack.py FOLDER ARCHIVE SECONDS"""
import pathlib
import sys
import time
import zipfile

folder, archive, seconds = pathlib.Path(sys.argv[1]), sys.argv[2], int(sys.argv[3])
moment = time.gmtime(seconds)[:6]
with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as packed:
    for path in sorted(folder.rglob("*")):
        if path.is_file():
            entry = zipfile.ZipInfo(f"{folder.name}/{path.relative_to(folder).as_posix()}", moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            packed.writestr(entry, path.read_bytes())
