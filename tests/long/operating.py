"""What the long proofs share: a way to let the transfer component carry out operations."""
import pathlib
import re
import subprocess
import sys

CHECKOUT = pathlib.Path(__file__).resolve().parents[2]


def operate(server, folder, operations, scheme="ftp"):
    """Carries out the operations in a local folder; returns the seconds and the peak of the memory in KiB."""
    command = [CHECKOUT / "build/bench/bin/operate", f"{scheme}://{server.place}", server.user, server.password]
    ended = subprocess.run(command, cwd=folder, input="".join(line + "\n" for line in operations), text=True,
                           capture_output=True)
    if ended.returncode != 0:
        sys.exit(f"It failed: {ended.stderr.strip()}")
    told = re.search(r"seconds ([0-9.]+)\npeak memory ([0-9]+) kB", ended.stdout)
    return float(told[1]), int(told[2])
