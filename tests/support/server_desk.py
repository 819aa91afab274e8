#!/usr/bin/python3
"""Starts real servers for tests that cannot start them themselves: those that run as programs for Windows.

    server_desk.py            prints its loopback port on one line and serves until its input ends

Who wants a server connects and writes one line, with files and folders as Wine names them:
    KIND ADDRESS FOLDER [OPTION...]   the connection becomes the input and the output of a real_server.py, and ends it
    run PROGRAM [WORD...]             one of the programs that tools/fetch-servers has fetched; it ends with the connection
"""
import os
import pathlib
import socket
import subprocess
import sys
import threading

KEEPER = pathlib.Path(__file__).resolve().with_name("real_server.py")
FETCHED = pathlib.Path(os.environ.get("TOLVANE_CACHE", KEEPER.parents[2] / ".cache")) / "servers"


def unix_path(word):
    """Wine keeps its drives as links in a folder of its own. What is no path stays as it is."""
    if word[1:3] != ":/":
        return word
    return str(pathlib.Path(os.environ["WINEPREFIX"], "dosdevices", word[:2].lower(), word[3:]))


def run(client, program, words):
    process = subprocess.Popen([FETCHED / program, *words], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    try:
        while client.recv(1):
            pass
    finally:
        process.kill()
        process.wait()


def serve(client):
    with client:
        line = b""
        while not line.endswith(b"\n"):
            byte = client.recv(1)
            if not byte:
                return
            line += byte
        first, second, *words = [unix_path(word) for word in line.decode().split()]
        if first == "run":
            run(client, second, words)
        else:
            subprocess.run([sys.executable, KEEPER, first, "--address", second, "--folder", *words],
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
