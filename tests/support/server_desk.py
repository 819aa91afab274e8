#!/usr/bin/python3
"""Starts real FTP servers for tests that cannot start them themselves: those that run as programs for Windows.

    server_desk.py            prints its loopback port on one line and serves until its input ends

Who wants a server connects and writes one line, KIND ADDRESS FOLDER, the folder as Wine names it; from then on the connection is the input and the
output of a real_server.py, which ends with it.
"""
import os
import pathlib
import socket
import subprocess
import sys
import threading

KEEPER = pathlib.Path(__file__).resolve().with_name("real_server.py")


def unix_path(folder):
    """Wine keeps its drives as links in a folder of its own."""
    return pathlib.Path(os.environ["WINEPREFIX"], "dosdevices", folder[:2].lower(), folder[3:])


def serve(client):
    with client:
        line = b""
        while not line.endswith(b"\n"):
            byte = client.recv(1)
            if not byte:
                return
            line += byte
        kind, address, folder = line.decode().rstrip("\n").split(" ", 2)
        subprocess.run([sys.executable, KEEPER, kind, "--address", address, "--folder", unix_path(folder)],
                       stdin=client, stdout=client, check=False)


def main():
    with socket.create_server(("127.0.0.1", 0)) as desk:
        print(desk.getsockname()[1], flush=True)
        threading.Thread(target=accept, args=(desk,), daemon=True).start()
        sys.stdin.read()


def accept(desk):
    while True:
        client, _ = desk.accept()
        threading.Thread(target=serve, args=(client,), daemon=True).start()


if __name__ == "__main__":
    main()
