"""Kills the program itself while it changes its site book, again and again, and looks at the book that it leaves.

The program runs on a display of its own and is worked like by a user, with the mouse and the keyboard: it connects to
new addresses, connects to known ones with the replacing button pressed, and erases addresses. Some time after the last
click of a change it is killed. The book must then be the one before that change or the one after it, byte for byte, and
the next start goes on from there."""
import argparse
import collections
import os
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

RECORD = 372
LONGEST_REST = 0.3  # seconds between the last input of a change and the kill
PATIENCE = 60  # seconds

# Where the controls are in the window.
ADDRESS, USER, PASSWORD, CONNECT, REPLACE, ERASE = (300, 45), (180, 76), (430, 76), (787, 45), (552, 76), (583, 45)


def record(number, site):
    address, user, password = (text.encode("ascii") for text in site)
    return number.to_bytes(2, "little") + address.ljust(270) + user.ljust(45) + password.ljust(55)


def book_of(sites):
    return b"".join(record(number, site) for number, site in enumerate(sites, 1))


class Screen:
    def __init__(self):
        read, write = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1200x800x24", "-noreset"],
                                       pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as told:
            self.environment = {**os.environ, "DISPLAY": ":" + told.readline().strip()}

    def do(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment, capture_output=True, text=True,
                              timeout=PATIENCE).stdout

    def begin(self, *words):
        return subprocess.Popen(["xdotool", *map(str, words)], env=self.environment)

    def window(self, name):
        ends = time.monotonic() + PATIENCE
        while time.monotonic() < ends:  # the search gives up when a window goes meanwhile
            if found := self.do("search", "--onlyvisible", "--name", name).split():
                return found[0]
            time.sleep(0.02)
        sys.exit(f"There is no window {name}.")


class Program:
    """One life of the program."""

    def __init__(self, screen, executable, home):
        self.screen = screen
        self.home = home
        self.process = subprocess.Popen(
            [executable], cwd=home, stderr=subprocess.DEVNULL,
            env={**screen.environment, "TOLVANE_HOME": str(home), "XDG_CONFIG_HOME": str(home / "config")})
        screen.do("windowfocus", "--sync", screen.window("Tolvane v3"))

    @staticmethod
    def field(place, text):
        return ["mousemove", *place, "click", 1, "key", "ctrl+a", "type", "--args", 1, "--delay", 0, text]

    def prepare(self, change, sites):
        """All but the last click of a change; returns that click and the books that may follow."""
        kind, site = change
        if kind == "erase":
            self.screen.do("mousemove", *ADDRESS, "click", 1, "key", "Down", "mousemove", *ERASE, "click", 1)
            self.screen.do("windowfocus", "--sync", self.screen.window("Erase URL"))
            return ["key", "alt+y"], [sites[:at] + sites[at + 1:] for at in range(len(sites))]
        self.screen.do(*self.field(ADDRESS, site[0]), *self.field(USER, site[1]), *self.field(PASSWORD, site[2]))
        if kind == "add":
            return ["mousemove", *CONNECT, "click", 1], [sites + [site]]
        self.screen.do("mousemove", *REPLACE, "click", 1)
        following = [site if known[0] == site[0] else known for known in sites]
        return ["mousemove", *CONNECT, "click", 1], [following]

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()


def next_change(number, sites):
    kinds = ["add"] * 3 + (["replace", "erase"] * 3 if len(sites) > 2 else [])
    kind = random.choice(kinds)
    address = random.choice(sites)[0] if kind == "replace" else f"ftp://127.0.0.1:1/{number}"
    return kind, (address, f"user{number}", f"word{number}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--kills", type=int, default=500)
    parser.add_argument("--program", type=pathlib.Path, required=True)
    options = parser.parse_args()
    screen = Screen()
    outcomes = collections.Counter()
    sites = []
    began = time.monotonic()
    with tempfile.TemporaryDirectory(prefix="tolvane-kills-") as top:
        home = pathlib.Path(top)
        (home / "config/Tolvane").mkdir(parents=True)
        (home / "config/Tolvane/Tolvane.conf").write_text("[Settings]\nFLanguage=1\n")
        try:
            for number in range(options.kills):
                program = Program(screen, options.program.resolve(), home)
                change = next_change(number, sites)
                click, following = program.prepare(change, sites)
                clicked = screen.begin(*click)
                time.sleep(random.uniform(0, LONGEST_REST))
                program.kill()
                clicked.wait()
                found = (home / "Tolvane.dta").read_bytes()
                if found == book_of(sites):
                    outcomes[change[0], "old"] += 1
                    continue
                fitting = [after for after in following if book_of(after) == found]
                if not fitting:
                    sys.exit(f"Kill {number + 1} ({change[0]}) left a book that is neither the old nor the new one.")
                outcomes[change[0], "new"] += 1
                sites = fitting[0]
        finally:
            screen.server.terminate()
            screen.server.wait()
    told = "; ".join(f"{kind}: {outcomes[kind, 'old']} left the old book, {outcomes[kind, 'new']} the new one"
                     for kind in ("add", "replace", "erase"))
    print(f"{options.kills} kills in {time.monotonic() - began:.0f} s. {told}. The book holds {len(sites)} sites.")


if __name__ == "__main__":
    main()
