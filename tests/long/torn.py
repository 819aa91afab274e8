"""Random operations against real servers through a proxy that tears one connection in four. Every file received or sent
is compared by hash, every listing by its names; what failed may have changed nothing; and the memory stays flat."""
import argparse
import hashlib
import pathlib
import random
import subprocess
import sys
import tempfile
import time

from running_server import Server
from tearing_proxy import TearingProxy, random_tear

CHECKOUT = pathlib.Path(__file__).resolve().parents[2]
SIZES = [0, 1, 100, 1460, 16384, 70_000, 300_000]
FOLDERS = ["", "one", "two words"]
TIMEOUT = 3  # seconds: what stalls costs this much
CLOSE_WAIT = "08"
TIMED_OUT = "12002"  # a busy machine may be late without any tear
GROWTH_LIMIT = 2048  # KiB, between the first tenth and the end


def digest(path):
    return hashlib.sha256(path.read_bytes()).digest() if path.exists() else None


def server_is_at_work(port):
    """A session of the server at this port has not yet noticed that its client is gone: it may still carry out what it
    was told before, or wait for data."""
    lines = (line.split() for line in pathlib.Path("/proc/net/tcp").read_text().splitlines()[1:])
    return any(words[1].endswith(f":{port:04X}") and words[3] == CLOSE_WAIT for words in lines)


class Wrong(Exception):
    pass


class Client:
    """The transfer component, driven one operation at a time."""

    def __init__(self, program, port, server, folder):
        command = [program, f"ftp://127.0.0.1:{port}", server.user, server.password,
                   str(TIMEOUT)]
        self.process = subprocess.Popen(command, cwd=folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def carry(self, operation):
        """Whether it was good, the reply or the error, and the memory in KiB."""
        self.process.stdin.write(operation.encode() + b"\n")
        self.process.stdin.flush()
        told = self.process.stdout.readline()
        if not told:
            raise Wrong(f"the client died at: {operation}")
        word, memory, rest = told.rstrip(b"\n").split(b" ", 2)
        if word == b"bad":
            return False, rest.decode("utf-8", "replace"), int(memory)
        return True, self.process.stdout.read(int(rest)), int(memory)

    def stop(self):
        self.process.stdin.close()
        self.process.wait()


class Soak:
    def __init__(self, kind, program, top, seed):
        self.noise = random.Random(seed)
        self.served, self.local = top / "served", top / "local"
        for folder in FOLDERS:
            (self.served / folder).mkdir(parents=True, exist_ok=True)
        self.local.mkdir()
        self.server = Server(kind, self.served)
        self.proxy = TearingProxy(int(self.server.port))
        self.client = Client(program, self.proxy.port, self.server, self.local)
        self.folder = ""
        self.good = self.bad = self.count = self.late = 0
        self.torn_before = 0  # when the operation before the last began
        self.torn_since = 0  # when the last began
        self.memory = []
        self.fresh = 0

    def here(self):
        return self.served / self.folder

    def names(self):
        return sorted(path.name for path in self.here().iterdir() if path.is_file())

    def some_bytes(self):
        return self.noise.randbytes(self.noise.choice(SIZES))

    def new_name(self):
        self.fresh += 1
        return f"file {self.fresh}.bin"

    def carry(self, operation, tear):
        self.torn_before, self.torn_since = self.torn_since, self.proxy.torn
        self.proxy.next_tear = tear
        good, told, memory = self.client.carry(operation)
        self.proxy.next_tear = None
        self.proxy.release()
        self.count += 1
        self.good += good
        self.bad += not good
        if self.count % 20 == 0:
            self.memory.append(memory)
        if not good:
            self.settle()
            self.check_failure(operation, told)
        return good, told

    def settle(self):
        begin = time.monotonic()
        while server_is_at_work(int(self.server.port)) and time.monotonic() - begin < 1:
            time.sleep(0.02)
        time.sleep(0.1)  # for a session whose connection was reset, which no table shows

    def check_failure(self, operation, told):
        code, sentence = told.split(" ", 1)
        if len(sentence) < 5:
            raise Wrong(f"no sentence: {told}")
        # What was torn at the very end of an operation may only be met by the next one.
        if self.proxy.torn == self.torn_before:
            self.late += code == TIMED_OUT
            if code != TIMED_OUT:
                raise Wrong(f"{operation} failed though nothing was torn: {told}")

    def receive(self, tear):
        if not self.names():
            return self.send(tear)
        name = self.noise.choice(self.names())
        old = digest(self.local / name)
        good, _ = self.carry(f'GET "{name}" "{name}"', tear)
        wanted = digest(self.here() / name) if good else old
        if digest(self.local / name) != wanted:
            raise Wrong("a received file is damaged" if good else "a file that was not received has changed")

    def send(self, tear):
        name = self.noise.choice(self.names() or [self.new_name()]) if self.noise.random() < 0.3 else self.new_name()
        (self.local / name).write_bytes(self.some_bytes())
        before = digest(self.local / name)
        good, _ = self.carry(f'PUT "{name}" "{name}"', tear)
        if digest(self.local / name) != before:
            raise Wrong("a file that was sent has changed on this side")
        if good and digest(self.here() / name) != before:
            sizes = [path.stat().st_size if path.exists() else None for path in (self.local / name, self.here() / name)]
            raise Wrong(f"a sent file is damaged: {sizes[1]} of {sizes[0]} bytes, torn by {tear and vars(tear)}")

    def list(self, tear):
        verb = self.noise.choice(["DIR", "LS"])
        good, told = self.carry(verb, tear)
        if not good:
            return
        lines = told.decode().split("\r\n")
        listed = sorted(name for name in self.names() if any(line.endswith(name) for line in lines))
        if listed != self.names():
            raise Wrong("a listing is incomplete")

    def erase(self, tear):
        if len(self.names()) < 10:
            return self.send(tear)
        name = self.noise.choice(self.names())
        others = [one for one in self.names() if one != name]
        good, _ = self.carry(f'DELETE "{name}"', tear)
        if good and (self.here() / name).exists() or [one for one in self.names() if one != name] != others:
            raise Wrong("a delete has left its file, or taken another")

    def rename(self, tear):
        if not self.names():
            return
        name, new = self.noise.choice(self.names()), self.new_name()
        before = digest(self.here() / name)
        good, _ = self.carry(f'RENAME "{name}" "{new}"', tear)
        after = self.after_rename(name, new)
        if after == [before, before] and not good:  # the server renamed it between the two looks
            after = self.after_rename(name, new)
        if after not in ([[None, before]] if good else [[None, before], [before, None]]):
            found = ["nothing" if one is None else "the file" if one == before else "something else" for one in after]
            raise Wrong(f"after a rename ({good=}) the old name stands for {found[0]}, the new one for {found[1]}")

    def after_rename(self, name, new):
        return [digest(self.here() / one) for one in (name, new)]

    def size(self, tear):
        if not self.names():
            return
        name = self.noise.choice(self.names())
        good, told = self.carry(f'SIZE "{name}"', tear)
        if good and int(told) != (self.here() / name).stat().st_size:
            raise Wrong("a size is wrong")

    def move(self, tear):
        if self.folder:
            good, _ = self.carry("CDUP", tear)
            target = ""
        else:
            target = self.noise.choice(FOLDERS[1:])
            good, _ = self.carry(f"CD {target}", tear)
        if good:
            self.folder = target

    def where(self, tear):
        good, told = self.carry("PWD", tear)
        if not good:
            return
        path = told.decode()
        if self.folder and not path.endswith("/" + self.folder) or not self.folder and path.endswith(tuple(FOLDERS[1:])):
            raise Wrong(f"the session is in {path} in place of {self.folder}")

    def step(self):
        steps = [self.receive, self.send, self.list, self.erase, self.rename, self.size, self.move, self.where]
        tear = random_tear(self.noise, SIZES) if self.noise.random() < 0.25 else None
        self.noise.choices(steps, [6, 5, 3, 4, 2, 1, 2, 2])[0](tear)
        left = [path.name for path in self.local.iterdir() if path.name.startswith(".tolvane-")]
        if left:
            raise Wrong(f"left behind: {left}")
        for path in list(self.local.iterdir())[200:]:
            path.unlink()

    def stop(self):
        self.client.stop()
        self.server.stop()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--operations", type=int, default=20_000, help="of all servers together")
    parser.add_argument("--servers", default="vsftpd,proftpd,pure-ftpd,pyftpdlib")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--client", type=pathlib.Path, default=CHECKOUT / "build/bench/tests/carry")
    options = parser.parse_args()
    kinds = options.servers.split(",")
    print("| server | operations | torn | good | failed | late | seconds | memory after a tenth | at the end |")
    print("|---|---|---|---|---|---|---|---|---|", flush=True)
    for kind in kinds:
        with tempfile.TemporaryDirectory(prefix="tolvane-torn-") as top:
            soak = Soak(kind, options.client, pathlib.Path(top), options.seed)
            begin = time.monotonic()
            try:
                while soak.count < options.operations // len(kinds):
                    soak.step()
            except Wrong as wrong:
                sys.exit(f"{kind}, operation {soak.count}: {wrong}")
            finally:
                soak.stop()
            tenth = soak.memory[len(soak.memory) // 10] if soak.memory else 0
            end = soak.memory[-1] if soak.memory else 0
            print(f"| {kind} | {soak.count} | {soak.proxy.torn} | {soak.good} | {soak.bad} | {soak.late} "
                  f"| {time.monotonic() - begin:.0f} | {tenth} KiB | {end} KiB |", flush=True)
            if end > tenth + GROWTH_LIMIT:
                sys.exit("The memory in use grows with the number of operations.")


if __name__ == "__main__":
    main()
