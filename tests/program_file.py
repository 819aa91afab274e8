#!/usr/bin/env python3
"""Checks what Windows reads from the executable's file before it runs: that it has a window and no console, its icons,
its version and its manifest.

Usage: program_file.py PROGRAM VERSION"""
import pathlib
import re
import struct
import sys
import xml.etree.ElementTree

SUBSYSTEM_WINDOWS = 2
ICON, ICON_GROUP, VERSION, MANIFEST = 3, 14, 16, 24
SMALL_AND_LARGE_ICONS = {16, 32, 48}  # pixels; 256 stands as 0
SETTINGS = {"dpiAware": "true/pm", "dpiAwareness": "PerMonitorV2", "longPathAware": "true"}
WINDOWS_10 = "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"


class Program:
    """The headers and the resources of an executable for 64-bit Windows."""

    def __init__(self, data):
        self.data = data
        head = struct.unpack_from("<I", data, 0x3C)[0]
        if data[:2] != b"MZ" or data[head:head + 4] != b"PE\0\0":
            raise ValueError("no executable for Windows")
        self.machine, sections, self.time = struct.unpack_from("<HHI", data, head + 4)
        size_of_optional = struct.unpack_from("<H", data, head + 20)[0]
        optional = head + 24
        self.subsystem = struct.unpack_from("<H", data, optional + 68)[0]
        resources = struct.unpack_from("<I", data, optional + 112 + 2 * 8)[0]
        self.sections = [struct.unpack_from("<IIII", data, optional + size_of_optional + 40 * number + 8)
                         for number in range(sections)]
        self.root = self.offset(resources)

    def offset(self, address):
        for size, begin, raw_size, raw in self.sections:
            if begin <= address < begin + max(size, raw_size):
                return address - begin + raw
        raise ValueError(f"no section holds the address {address:#x}")

    def entries(self, folder):
        named, numbered = struct.unpack_from("<HH", self.data, folder + 12)
        for number in range(named + numbered):
            yield struct.unpack_from("<II", self.data, folder + 16 + 8 * number)

    def below(self, place):
        """The contents of everything below a place of the tree of resources."""
        if place & 0x80000000:
            for _, inner in self.entries(self.root + (place & 0x7FFFFFFF)):
                yield from self.below(inner)
        else:
            address, size = struct.unpack_from("<II", self.data, self.root + place)
            begin = self.offset(address)
            yield self.data[begin:begin + size]

    def resources(self, kind):
        return [content for key, place in self.entries(self.root) if key == kind for content in self.below(place)]


def icon_sizes(group):
    count = struct.unpack_from("<H", group, 4)[0]
    return {group[6 + 14 * number] for number in range(count)}


def version_texts(content):
    """Key and value stand one behind the other, each ended by a NUL and filled up to four bytes."""
    text = content.decode("utf-16-le", errors="replace")
    return dict(re.findall("([A-Z][A-Za-z]+)\0+([^\0]+)\0", text))


def settings_of(manifest):
    tree = xml.etree.ElementTree.fromstring(manifest)
    texts = {element.tag.rpartition("}")[2]: element.text for element in tree.iter()}
    systems = [element.get("Id") for element in tree.iter() if element.tag.endswith("supportedOS")]
    level = [element.get("level") for element in tree.iter() if element.tag.endswith("requestedExecutionLevel")]
    return texts, systems, level


def complaints(program, version):
    if program.machine != 0x8664:
        yield f"the machine is {program.machine:#x}"
    if program.subsystem != SUBSYSTEM_WINDOWS:
        yield f"the subsystem is {program.subsystem}: it would open a console"
    groups = program.resources(ICON_GROUP)
    sizes = icon_sizes(groups[0]) if groups else set()
    if not SMALL_AND_LARGE_ICONS <= sizes or len(program.resources(ICON)) != len(sizes):
        yield f"there are {len(program.resources(ICON))} icons, of the sizes {sorted(sizes)}"
    for content in program.resources(VERSION) or [b""]:
        texts = version_texts(content)
        for key, wanted in (("ProductName", "Tolvane"), ("ProductVersion", version), ("FileVersion", version),
                            ("OriginalFilename", "tolvane.exe")):
            if texts.get(key) != wanted:
                yield f"{key} is {texts.get(key)!r}"
        at = content.find(struct.pack("<I", 0xFEEF04BD))
        high, low = struct.unpack_from("<II", content, at + 8) if at >= 0 else (0, 0)
        number = f"{high >> 16}.{high & 0xFFFF}.{low >> 16}"
        if number != version:
            yield f"the file's version in figures is {number}"
    manifests = program.resources(MANIFEST)
    if len(manifests) != 1:
        yield f"there are {len(manifests)} manifests"
        return
    texts, systems, level = settings_of(manifests[0])
    for key, wanted in SETTINGS.items():
        if texts.get(key) != wanted:
            yield f"{key} in the manifest is {texts.get(key)!r}"
    if WINDOWS_10 not in systems:
        yield "the manifest does not name Windows 10"
    if level != ["asInvoker"]:
        yield f"the manifest asks for the rights {level}"


def main():
    found = list(complaints(Program(pathlib.Path(sys.argv[1]).read_bytes()), sys.argv[2]))
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
