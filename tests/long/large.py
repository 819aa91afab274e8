"""Receives and sends a file beyond 4 GiB from and to every server, compares each byte, and tells the peak of memory."""
import argparse
import filecmp
import os
import pathlib
import random
import sys
import tempfile

from operating import operate
from running_server import Server

MIB = 1 << 20


def make_source(path, size):
    """Mostly holes; random bytes at the beginning, around each power of two from 2 GiB on, and at the end."""
    noise = random.Random(4)
    places = [0, size - MIB - 1] + [(1 << power) - MIB // 2 for power in range(31, size.bit_length())]
    with open(path, "wb") as file:
        file.truncate(size)
        for place in places:
            file.seek(place)
            file.write(noise.randbytes(MIB + 1))


def prove(kind, size, top):
    served, local = top / "served", top / "local"
    served.mkdir()
    local.mkdir()
    make_source(served / "large", size)
    server = Server(kind, served)
    try:
        _, small = operate(server, local, ["DIR"])
        received, receive_peak = operate(server, local, ['GET "large" "large"'])
        if not filecmp.cmp(served / "large", local / "large", shallow=False):
            sys.exit(f"{kind}: what was received differs from what was served.")
        os.remove(local / "large")
        os.rename(served / "large", local / "large")
        sent, send_peak = operate(server, local, ['PUT "large" "sent"'])
        if not filecmp.cmp(local / "large", served / "sent", shallow=False):
            sys.exit(f"{kind}: what was sent differs from what arrived.")
    finally:
        server.stop()
    gib = size / (1 << 30)
    print(f"| {kind} | {gib / received:.2f} GiB/s | {receive_peak} KiB | {gib / sent:.2f} GiB/s | {send_peak} KiB "
          f"| {small} KiB |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--size", type=int, default=(4 << 30) + 12345, help="bytes")
    parser.add_argument("--folder", default=None, help="where the files lie; needs twice the size")
    parser.add_argument("--servers", default="vsftpd,proftpd,pure-ftpd,pyftpdlib")
    options = parser.parse_args()
    print(f"{options.size} bytes, each compared.\n")
    print("| server | receive | peak memory | send | peak memory | peak memory of a mere listing |")
    print("|---|---|---|---|---|---|")
    for kind in options.servers.split(","):
        with tempfile.TemporaryDirectory(dir=options.folder, prefix="tolvane-large-") as top:
            prove(kind, options.size, pathlib.Path(top))


if __name__ == "__main__":
    main()
