"""One session of many operations with each server. The memory in use must not grow with their number."""
import argparse
import pathlib
import sys
import tempfile

from operating import operate
from running_server import Server

TURN = ['PUT "file" "sent {n}"', "DIR", 'GET "sent {n}" "received"', 'SIZE "sent {n}"', 'MKDIR "folder {n}"',
        "CD folder {n}", "LS", "CDUP", 'RENAME "sent {n}" "renamed {n}"', 'DELETE "renamed {n}"', 'RMDIR "folder {n}"']
GROWTH_LIMIT = 1024  # KiB


def operations(count):
    return [TURN[number % len(TURN)].format(n=number // len(TURN)) for number in range(count)]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--operations", type=int, default=55_000)
    parser.add_argument("--servers", default="vsftpd,proftpd,pure-ftpd,pyftpdlib")
    options = parser.parse_args()
    print("| server | operations | seconds | peak memory | peak memory of a tenth of them |\n|---|---|---|---|---|")
    for kind in options.servers.split(","):
        with tempfile.TemporaryDirectory(prefix="tolvane-soak-") as top:
            served, local = pathlib.Path(top, "served"), pathlib.Path(top, "local")
            served.mkdir()
            local.mkdir()
            (local / "file").write_bytes(b"x" * 20_000)
            server = Server(kind, served)
            try:
                _, before = operate(server, local, operations(options.operations // 10))
                seconds, after = operate(server, local, operations(options.operations))
            finally:
                server.stop()
        print(f"| {kind} | {options.operations} | {seconds:.0f} | {after} KiB | {before} KiB |", flush=True)
        if after > before + GROWTH_LIMIT:
            sys.exit("The memory in use grows with the number of operations.")


if __name__ == "__main__":
    main()
