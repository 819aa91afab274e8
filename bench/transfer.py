"""One large file and many small ones, received and sent by Tolvane's transfer component and by other FTP clients.

Every client does the same job over loopback with the same server, each as its user would have it do the job: one
program start, one log-in, file after file. The time is that of the whole program. The clients take turns in random
order; the figures are medians, the first round is not counted. Received and sent files are compared with
their source in each round; a round in which another client damaged them does not count for it (nan: none counted).
Where it is allowed, everything runs at real-time priority: other work on the machine would be measured otherwise.
"""
import argparse
import collections
import filecmp
import math
import os
import pathlib
import platform
import random
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from running_server import Server

CHECKOUT = pathlib.Path(__file__).resolve().parents[1]
Took = collections.namedtuple("Took", "seconds work")  # of the clock, and of the processor for the client alone
MOST_ENDED = 20000
JOBS = ("receive large", "send large", "receive small", "send small")


class Damage(Exception):
    """A client has not done its job."""


def rise():
    """True when this program, with what it starts, goes before everything else on the machine."""
    try:
        os.sched_setscheduler(0, os.SCHED_RR, os.sched_param(10))
        return True
    except PermissionError:
        return False


class Clients:
    """How each client is told to do each job; the current folder is the local one."""

    def __init__(self, server, names, operate):
        self.server, self.names, self.operate = server, names, operate
        self.secure = server.authority is not None
        if self.secure:
            os.environ["SSL_CERT_FILE"] = server.authority
        self.login = f"{server.user}:{server.password}"
        self.range = f"[{names[0]}-{names[-1]}]"

    def tolvane(self, job):
        folder = {"receive large": "", "send large": "/sent", "receive small": "/small", "send small": "/sent"}[job]
        verb = "GET" if job.startswith("receive") else "PUT"
        files = ["large"] if job.endswith("large") else self.names
        command = [self.operate, f"{'ftpes' if self.secure else 'ftp'}://{self.server.place}{folder}", self.server.user, self.server.password]
        return command, "".join(f'{verb} "{name}" "{name}"\n' for name in files)

    def curl(self, job):
        url = f"ftp://{self.login}@{self.server.place}"
        arguments = {
            "receive large": ["-o", "large", f"{url}/large"],
            "send large": ["-T", "large", f"{url}/sent/"],
            "receive small": ["--remote-name-all", f"{url}/small/{self.range}"],
            "send small": ["-T", self.range, f"{url}/sent/"],
        }[job]
        return ["curl", "-sS", *(["--ssl-reqd", "--cacert", self.server.authority] if self.secure else []), *arguments], ""

    def lftp(self, job):
        commands = {
            "receive large": "get large",
            "send large": "put -O sent large",
            "receive small": "mget small/*",
            "send small": "mput -O sent *",
        }[job]
        place = f"open -u {self.server.user},{self.server.password} ftp://{self.server.place}"
        security = ""
        if self.secure:
            security = f"set ssl:ca-file {self.server.authority}; set ftp:ssl-force yes; set ftp:ssl-protect-data yes; "
        return ["lftp", "-c", f"{security}{place} && {commands}"], ""

    def ncftp(self, job):
        options = ["-V", "-u", self.server.user, "-p", self.server.password, "-P", self.server.port]
        if job.startswith("receive"):
            return ["ncftpget", *options, "127.0.0.1", ".", "large" if job.endswith("large") else "small/*"], ""
        files = ["large"] if job.endswith("large") else self.names
        return ["ncftpput", *options, "127.0.0.1", "sent", *files], ""

    def command(self, client, job):
        return getattr(self, client)(job)


def make_sources(top, large_bytes, names, small_bytes):
    (top / "small").mkdir(parents=True)
    (top / "sent").mkdir()
    block = os.urandom(1 << 22)
    with open(top / "large", "wb") as large:
        for _ in range(large_bytes // len(block)):
            large.write(block)
    for name in names:
        (top / "small" / name).write_bytes(os.urandom(small_bytes))


def empty(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()


def wait_for_ports():
    """A connection that has ended keeps its port for a minute: many small files use up those of the machine."""
    while int(pathlib.Path("/proc/net/sockstat").read_text().split(" tw ")[1].split()[0]) > MOST_ENDED:
        time.sleep(1)


def check(job, client, source, target, names):
    files = ["large"] if job.endswith("large") else names
    for name in files:
        if not (target / name).exists() or not filecmp.cmp(source / name, target / name, shallow=False):
            raise Damage(f"{client} did not {job} the file {name} correctly.")
    if len(list(target.iterdir())) != len(files):
        raise Damage(f"{client} left more files than it should when told to {job}.")


def run(clients, client, job, top, local, names):
    served = top / ("" if job.endswith("large") else "small")
    sent = top / "sent"
    empty(local)
    empty(sent)
    receive = job.startswith("receive")
    if not receive:
        for name in ["large"] if job.endswith("large") else names:
            os.link(served / name, local / name)
    command, fed = clients.command(client, job)
    wait_for_ports()
    before, started = resource.getrusage(resource.RUSAGE_CHILDREN), time.perf_counter()
    ended = subprocess.run(command, cwd=local, input=fed, text=True, capture_output=True)
    seconds, after = time.perf_counter() - started, resource.getrusage(resource.RUSAGE_CHILDREN)
    work = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    if ended.returncode != 0:
        raise Damage(f"{client} failed to {job}: {ended.stderr.strip()[-300:]}")
    check(job, client, served, local if receive else sent, names)
    return Took(seconds, work)


def table(title, unit, clients, cell):
    print(f"\n| {title} | " + " | ".join(f"{job} ({unit[job]})" for job in JOBS) + " |")
    print("|---" * (len(JOBS) + 1) + "|")
    for client in clients:
        print(f"| {client} | " + " | ".join(cell(client, job) for job in JOBS) + " |")


def report(times, options, risen):
    machine = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo", encoding="ascii")
                    if line.startswith("model name")), platform.machine())
    print(f"{machine}, {os.cpu_count()} processors, Linux {platform.release()}, load {os.getloadavg()[1]:.1f}, "
          f"{'real-time' if risen else 'normal'} priority; "
          f"server {options.server}{f' with TLS {options.tls}' if options.tls else ''}; large: {options.large} MiB, small: {options.small} files of "
          f"{options.small_bytes} bytes, in {options.folder}; {options.rounds} rounds, medians.")
    clients = list(times)

    def median(client, job, what):
        return statistics.median([getattr(took, what) for took in times[client][job]] or [math.nan])

    def speed(client, job):
        amount, form = (options.large / 1024, ".2f") if job.endswith("large") else (options.small, ".0f")
        return format(amount / median(client, job, "seconds"), form)

    def ratio(client, job):
        return format(median(client, job, "seconds") / median(clients[0], job, "seconds"), ".2f")

    def work(client, job):
        return format(median(client, job, "work") * 1000, ".0f")

    table("speed", {job: "GiB/s" if job.endswith("large") else "files/s" for job in JOBS}, clients, speed)
    table(f"{clients[0]} is faster than", {job: "times" for job in JOBS}, clients[1:], ratio)
    table("work of the client", {job: "ms of processor" for job in JOBS}, clients, work)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--large", type=int, default=1536, help="MiB of the large file")
    parser.add_argument("--small", type=int, default=2000, help="number of small files")
    parser.add_argument("--small-bytes", type=int, default=1024)
    parser.add_argument("--server", default="vsftpd", help="vsftpd (uses sendfile), proftpd, pure-ftpd or pyftpdlib")
    parser.add_argument("--folder", default="/dev/shm", help="where the files lie; memory keeps the disk out of it")
    parser.add_argument("--priority", default="real-time", choices=("real-time", "normal"))
    parser.add_argument("--clients", default="tolvane,curl,lftp,ncftp")
    parser.add_argument("--tls", choices=("1.2", "1.3"), help="the same over secure FTP, which ncftp does not speak")
    options = parser.parse_args()
    names = [f"{number:05}" for number in range(1, options.small + 1)]
    chosen = [client for client in options.clients.split(",") if not (options.tls and client == "ncftp")]
    risen = options.priority == "real-time" and rise()
    order = random.Random(7)  # what a client leaves behind in the caches must not always meet the same one
    times = {client: collections.defaultdict(list) for client in chosen}
    with tempfile.TemporaryDirectory(dir=options.folder, prefix="tolvane-bench-") as work:
        top, local = pathlib.Path(work, "served"), pathlib.Path(work, "local")
        make_sources(top, options.large << 20, names, options.small_bytes)
        secure = ("--tls", "explicit", "--tls-version", options.tls) if options.tls else ()
        server = Server(options.server, top, *secure)
        try:
            clients = Clients(server, names, str(CHECKOUT / "build/bench/bin/operate"))
            for job in JOBS:
                for number in range(options.rounds + 1):
                    for client in order.sample(chosen, len(chosen)):
                        try:
                            took = run(clients, client, job, top, local, names)
                        except Damage as damage:
                            if client == "tolvane":
                                raise
                            print(damage, file=sys.stderr)
                            continue
                        if number > 0:
                            times[client][job].append(took)
                        print(f"{job}, round {number}: {client}: {took.seconds:.3f} s, processor {took.work:.3f} s",
                              file=sys.stderr)
        finally:
            server.stop()
    report(times, options, risen)


if __name__ == "__main__":
    main()
