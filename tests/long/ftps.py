"""Receives and sends many files over secure FTP, TLS 1.2 and 1.3, with every server; compares the hash of each."""
import argparse
import hashlib
import os
import pathlib
import random
import shutil
import sys
import tempfile

from operating import operate
from running_server import Server

MB = 1_000_000
SETS = (("500 of 1 MB", 500, MB), ("500 of 10 bytes", 500, 10), ("20 of 50 MB", 20, 50 * MB))


def make_files(folder, label, count, size):
    noise = random.Random(label)
    block = noise.randbytes(MB)
    hashes = {}
    for number in range(count):
        name, content = f"{label}-{number:03}", hashlib.sha256()
        with open(folder / name, "wb") as file:
            left = size
            while left > 0:
                part = noise.randbytes(min(left, 16)) + block[: max(min(left, MB) - 16, 0)]
                file.write(part)
                content.update(part)
                left -= len(part)
        hashes[name] = content.hexdigest()
    return hashes


def check(folder, hashes, what):
    found = {path.name for path in folder.iterdir()}
    if found != set(hashes):
        sys.exit(f"{what}: {len(found ^ set(hashes))} files are missing or too many.")
    for name, wanted in hashes.items():
        with open(folder / name, "rb") as file:
            if hashlib.file_digest(file, "sha256").hexdigest() != wanted:
                sys.exit(f"{what}: {name} differs.")


def fresh(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    return folder


def prove(kind, version, protection, sets, top):
    originals, served, local = top / "originals", fresh(top / "served"), fresh(top / "local")
    cells = []
    for label, hashes, size in sets:
        for name in hashes:
            os.link(originals / name, served / name)
        scheme = {"explicit": "ftpes", "implicit": "ftps"}[protection]
        server = Server(kind, served, "--tls", protection, "--tls-version", version)
        try:
            received, _ = operate(server, local, [f'GET "{name}" "{name}"' for name in hashes], scheme)
            check(local, hashes, f"{kind}, TLS {version}, {label}, received")
            fresh(served)
            fresh(local)
            for name in hashes:
                os.link(originals / name, local / name)
            sent, _ = operate(server, local, [f'PUT "{name}" "{name}"' for name in hashes], scheme)
            check(served, hashes, f"{kind}, TLS {version}, {label}, sent")
        finally:
            server.stop()
        fresh(served)
        fresh(local)
        total = len(hashes) * size / MB
        cells += [form(received, total, len(hashes)), form(sent, total, len(hashes))]
    print(f"| {kind} | {version} | {protection} | " + " | ".join(cells) + " |", flush=True)


def form(seconds, megabytes, files):
    return f"{megabytes / seconds:.0f} MB/s" if megabytes > 1 else f"{files / seconds:.0f} files/s"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--servers", default="vsftpd,proftpd,pure-ftpd,pyftpdlib")
    parser.add_argument("--versions", default="1.2,1.3")
    parser.add_argument("--protection", default="explicit", choices=("explicit", "implicit"))
    parser.add_argument("--folder", default=None, help="where the files lie; needs about 4 GB")
    options = parser.parse_args()
    print("| server | TLS | | " + " | ".join(f"{label}, received | sent" for label, _, _ in SETS) + " |")
    print("|---" * (3 + 2 * len(SETS)) + "|")
    with tempfile.TemporaryDirectory(dir=options.folder, prefix="tolvane-ftps-") as work:
        top = pathlib.Path(work)
        (top / "originals").mkdir()
        sets = [(label, make_files(top / "originals", label, count, size), size) for label, count, size in SETS]
        for kind in options.servers.split(","):
            for version in options.versions.split(","):
                prove(kind, version, options.protection, sets, top)
    print("\nEvery file arrived, with the hash of its source.")


if __name__ == "__main__":
    main()
