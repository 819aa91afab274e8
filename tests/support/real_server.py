#!/usr/bin/python3
"""Keeps one real FTP server alive on a free loopback port for as long as its caller lives.

    real_server.py vsftpd|proftpd|pure-ftpd|pyftpdlib --folder FILES [--address 127.0.0.1|::1] [--servers CACHE]
                   [--tls explicit|implicit] [--tls-version 1.2|1.3] [--refuse-passive]

Serves FILES read-write to one user (see USERS), and to anonymous with any password a client is likely to send. Once
the server accepts connections, one line of JSON tells what was started: {"port": ..., "user": ..., "password": ...}.
With --tls it takes secure connections only, protects the data, too, and demands that data connections resume the TLS
session where it knows how to; "authority" in the line of JSON is then the certificate that vouches for the server's.
With --refuse-passive, which pure-ftpd does not know, the server opens no ports and has to connect to its clients; "log"
in the line of JSON is then a file with every command that it has got.
Then it reads commands: "kill" ends the server with all its sessions at once, as a crash would, and answers "killed";
the end of the input (the caller closed it, or died) does the same and ends this program. Nothing is left running.

The servers are the ones tools/fetch-servers has unpacked. All four run as root and as an ordinary user. They do not
change to another user: what they write belongs to whoever started them.
  vsftpd     runs in its one-process mode, which knows anonymous users only; the password list makes "ftp" a user.
  proftpd    as an ordinary user anonymous needs a user namespace (unshare -r).
  pure-ftpd  insists on root and on changing the user: preloaded libraries make it believe so, in a user namespace
             when started by an ordinary user. It has no implicit TLS.
"""
import argparse
import ctypes
import fcntl
import getpass
import json
import os
import pathlib
import shutil
import signal
import socket
import ssl
import subprocess
import sys
import tempfile
import time

CHECKOUT = pathlib.Path(__file__).resolve().parents[2]
KINDS = ("vsftpd", "proftpd", "pure-ftpd", "pyftpdlib")
PASSWORD = "Secret-7"
# The same by crypt(3), with few rounds: a log-in takes no time.
HASHED_PASSWORD = (
    "$6$rounds=1000$tolvane$3K02ywIJu2IyUCc/NYpcSvDo7aTGpT5EFCOJN"
    "uaGiOv/GbiTmiIt5hTx0DL/djvX6ERc483Z6SNCprVNqfN8q."
)
USERS = {"vsftpd": "ftp", "proftpd": "tester", "pure-ftpd": "tester", "pyftpdlib": "tester"}
ANONYMOUS_PASSWORDS = ("anonymous@example.com", "ftp@example.com", "anonymous@", "guest")
PR_SET_PDEATHSIG, PR_SET_CHILD_SUBREAPER = 1, 36
START_LIMIT = 20  # seconds


def prctl(option, value):
    ctypes.CDLL(None, use_errno=True).prctl(option, value, 0, 0, 0)


def die_with_parent():
    prctl(PR_SET_PDEATHSIG, signal.SIGKILL)


def default_cache():
    return pathlib.Path(os.environ.get("TOLVANE_CACHE", CHECKOUT / ".cache")) / "servers"


class Certificates:
    """An authority of our own and a server's certificate by it, made once and kept in the cache."""

    def __init__(self, cache):
        self.folder = cache / "certificates"
        self.authority, self.certificate = self.folder / "authority.pem", self.folder / "server.pem"
        self.key = self.folder / "server.key"
        self.both = self.folder / "both.pem"
        self.folder.mkdir(parents=True, exist_ok=True)
        with open(self.folder / ".lock", "w", encoding="ascii") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            if not self.both.exists():
                self.make()

    def make(self):
        names = "subjectAltName=DNS:localhost,IP:127.0.0.1,IP:::1"
        self.openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "3650", "-subj", "/CN=Loopback authority",
                     "-keyout", "authority.key", "-out", "authority.pem")
        self.openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "3650", "-subj", "/CN=localhost",
                     "-addext", names, "-addext", "basicConstraints=critical,CA:FALSE", "-CA", "authority.pem",
                     "-CAkey", "authority.key", "-keyout", "server.key", "-out", "server.pem")
        self.both.write_text(self.key.read_text() + self.certificate.read_text())
        self.both.chmod(0o600)

    def openssl(self, *arguments):
        subprocess.run(["openssl", *arguments], cwd=self.folder, check=True, capture_output=True)


class SelfSigned(Certificates):
    """A certificate that nobody vouches for; made anew by each make()."""

    def make(self):
        self.openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "3650", "-subj", "/CN=localhost",
                     "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1,IP:::1",
                     "-keyout", "new.key", "-out", "new.pem")
        (self.folder / "new.key").rename(self.key)
        (self.folder / "new.pem").rename(self.certificate)
        shutil.copy(self.certificate, self.authority)
        self.both.write_text(self.key.read_text() + self.certificate.read_text())
        self.both.chmod(0o600)


class Tls:
    """How a server is to be secured."""

    def __init__(self, implicit, version, certificates):
        self.implicit, self.version, self.certificates = implicit, version, certificates

    def library_settings(self):
        """A configuration of OpenSSL that allows one version only; every server obeys it."""
        return f"""
            openssl_conf = settings
            [settings]
            ssl_conf = connections
            [connections]
            system_default = version
            [version]
            MinProtocol = TLSv{self.version or "1.2"}
            MaxProtocol = TLSv{self.version or "1.3"}
            """


class Plan:
    """How one server is started: its command line and environment, with the files it needs in `work`."""

    def __init__(self, kind, servers, work, folder, address, port, tls, refuse_passive):
        self.servers, self.work, self.folder = servers, work, folder
        self.address, self.port, self.tls, self.refuse_passive = address, port, tls, refuse_passive
        self.log = work / "log"
        self.user = USERS[kind]
        libraries = sorted({str(path.parent) for path in (servers / "lib").rglob("*.so*")})
        self.environment = dict(os.environ, LD_LIBRARY_PATH=":".join(libraries), TZ="UTC", LC_ALL="C.UTF-8")
        if tls:
            self.environment["OPENSSL_CONF"] = str(self.write("openssl.cnf", tls.library_settings()))
        self.command = {"vsftpd": self.vsftpd, "proftpd": self.proftpd, "pure-ftpd": self.pure_ftpd,
                        "pyftpdlib": self.pyftpdlib}[kind]()

    def write(self, name, text, mode=0o600):
        path = self.work / name
        path.write_text(text)
        path.chmod(mode)
        return path

    def as_root(self, command):
        return command if os.getuid() == 0 else ["unshare", "--map-root-user", *command]

    def vsftpd(self):
        passwords = self.write("passwords", "\n".join((PASSWORD, *ANONYMOUS_PASSWORDS)) + "\n")
        empty = self.work / "empty"
        empty.mkdir()
        six = ":" in self.address
        settings = {
            "background": "NO", "listen": "NO" if six else "YES", "listen_ipv6": "YES" if six else "NO",
            "listen_address6" if six else "listen_address": self.address, "listen_port": self.port,
            "run_as_launching_user": "YES", "ftp_username": getpass.getuser(), "nopriv_user": getpass.getuser(),
            "anonymous_enable": "YES", "no_anon_password": "NO", "secure_email_list_enable": "YES",
            "email_password_file": passwords, "anon_root": self.folder, "write_enable": "YES",
            "anon_upload_enable": "YES", "anon_mkdir_write_enable": "YES", "anon_other_write_enable": "YES",
            "anon_world_readable_only": "NO", "anon_umask": "022", "secure_chroot_dir": empty,
            "delay_failed_login": 0, "seccomp_sandbox": "NO", "isolate": "NO", "isolate_network": "NO",
            "connect_from_port_20": "NO", "xferlog_enable": "NO", "vsftpd_log_file": self.work / "log",
        }
        if self.refuse_passive:
            settings |= {"pasv_enable": "NO", "log_ftp_protocol": "YES", "xferlog_enable": "YES"}
        if self.tls:
            settings |= {
                "ssl_enable": "YES", "allow_anon_ssl": "YES", "force_anon_logins_ssl": "YES",
                "force_anon_data_ssl": "YES", "require_ssl_reuse": "YES", "ssl_ciphers": "HIGH",
                "rsa_cert_file": self.tls.certificates.certificate,
                "rsa_private_key_file": self.tls.certificates.key,
                "implicit_ssl": "YES" if self.tls.implicit else "NO",
            }
        text = "".join(f"{key}={value}\n" for key, value in settings.items())
        return [self.servers / "vsftpd/usr/sbin/vsftpd", self.write("vsftpd.conf", text)]

    def proftpd(self):
        # Anonymous is an alias, and would take the named user's own log-in along: it gets a user of its own.
        users = self.write("users", "".join(f"{user}:{HASHED_PASSWORD}:0:0::{self.folder}:/bin/sh\n"
                                            for user in (self.user, "guest")))
        groups = self.write("groups", f"servers:x:0:{self.user},guest\n")
        text = f"""
            ServerName "Loopback"
            ServerType standalone
            DefaultServer on
            UseIPv6 on
            DefaultAddress {self.address}
            Port {self.port}
            SocketBindTight on
            User root
            Group root
            RootLogin on
            AuthOrder mod_auth_file.c
            AuthUserFile {users}
            AuthGroupFile {groups}
            AuthPAM off
            RequireValidShell off
            UseFtpUsers off
            UseReverseDNS off
            UseEncoding off
            WtmpLog off
            TransferLog none
            SystemLog {self.work}/system.log
            PidFile {self.work}/pid
            ScoreboardFile {self.work}/scoreboard
            DelayEngine off
            AllowOverwrite on
            Umask 022
            <Anonymous {self.folder}>
                User guest
                UserAlias anonymous guest
                UserAlias ftp guest
                <Limit WRITE>
                    DenyAll
                </Limit>
            </Anonymous>
            """
        if self.refuse_passive:
            text += f"""
            <Limit EPSV PASV>
                DenyAll
            </Limit>
            ExtendedLog {self.log} ALL
            """
        if self.tls:
            text += f"""
            ModulePath {self.servers}/proftpd/usr/lib/proftpd
            LoadModule mod_tls.c
            TLSEngine on
            TLSRequired on
            TLSProtocol TLSv1.2 TLSv1.3
            TLSRSACertificateFile {self.tls.certificates.certificate}
            TLSRSACertificateKeyFile {self.tls.certificates.key}
            TLSLog {self.work}/tls.log
            {"TLSOptions UseImplicitSSL" if self.tls.implicit else ""}
            """
        configuration = self.write("proftpd.conf", text)
        return self.as_root([self.servers / "proftpd/usr/sbin/proftpd", "--nodaemon", "--config", configuration])

    def pure_ftpd(self):
        home = f"{self.folder}:/bin/sh\n"
        users = self.write("nss-users", "root:x:0:0::/:/bin/sh\n"
                           f"{self.user}:x:5000:5000::{home}ftp:x:5001:5001::{home}")
        groups = self.write("nss-groups", f"root:x:0:\n{self.user}:x:5000:\nftp:x:5001:\n")
        virtual = self.write("users", f"{self.user}:{HASHED_PASSWORD}:5000:5000::{self.folder}::::::::::::\n")
        database = self.work / "users.pdb"
        subprocess.run([self.servers / "pure-ftpd/usr/bin/pure-pw", "mkdb", database, "-f", virtual], check=True,
                       env=self.environment)
        pretence = {"LD_PRELOAD": "libuid_wrapper.so libnss_wrapper.so", "UID_WRAPPER": 1, "UID_WRAPPER_ROOT": 1,
                    "NSS_WRAPPER_PASSWD": users, "NSS_WRAPPER_GROUP": groups}
        return self.as_root(["env", *(f"{key}={value}" for key, value in pretence.items()),
                             self.servers / "pure-ftpd/usr/sbin/pure-ftpd", "-S", f"{self.address},{self.port}",
                             "-l", f"puredb:{database}", "-H", "-u", "1", "-i", "-f", "none", "-L", "300000:5",
                             "-g", self.work / "pid", *self.pure_tls()])

    def pure_tls(self):
        if not self.tls:
            return []
        if self.tls.implicit:
            sys.exit("real_server.py: pure-ftpd has no implicit TLS.")
        return ["--tls=3", f"--certfile={self.tls.certificates.both}"]

    def pyftpdlib(self):
        library = self.servers / "pyftpdlib/usr/lib/python3/dist-packages"
        self.environment["PYTHONPATH"] = str(library)
        handler = "FTPHandler"
        securing = ""
        logging = "pyftpdlib.log.config_logging(level=40)"
        if self.refuse_passive:
            logging = f"""
import logging
logging.basicConfig(filename={str(self.log)!r}, level=logging.DEBUG)
FTPHandler.ftp_EPSV = FTPHandler.ftp_PASV = lambda self, line: self.respond("502 No ports.")
"""
        if self.tls:
            handler = "Secure"
            securing = f"""
from pyftpdlib.handlers import TLS_FTPHandler
class Secure(TLS_FTPHandler):
    certfile = {str(self.tls.certificates.both)!r}
    tls_control_required = True
    tls_data_required = True
    def handle(self):
        if {self.tls.implicit}:
            self.secure_connection(self.ssl_context)
        super().handle()
"""
        program = f"""
import socket
from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer
import pyftpdlib.log
{logging}
authorizer = DummyAuthorizer()
authorizer.add_user({self.user!r}, {PASSWORD!r}, {str(self.folder)!r}, perm="elradfmwMT")
authorizer.add_anonymous({str(self.folder)!r})
FTPHandler.authorizer = authorizer
FTPHandler.unicode_errors = "surrogateescape"
FTPHandler.auth_failed_timeout = 0
{securing}
server = FTPServer(({self.address!r}, {self.port}), {handler}, backlog=200)
server.max_cons = 0
server.serve_forever()
"""
        return [sys.executable, self.write("server.py", program)]


def free_port(address):
    family = socket.AF_INET6 if ":" in address else socket.AF_INET
    with socket.socket(family, socket.SOCK_STREAM) as probe:
        probe.bind((address, 0))
        return probe.getsockname()[1]


def greeted(address, port, tls):
    connection = socket.create_connection((address, port), timeout=5)
    if tls and tls.implicit:
        settings = ssl.create_default_context(cafile=str(tls.certificates.authority))
        connection = settings.wrap_socket(connection, server_hostname=address)
    with connection:
        return connection.recv(3) == b"220"


def accepts(address, port, process, tls):
    """True once the port accepts a connection and says something, False when the server has ended."""
    deadline = time.monotonic() + START_LIMIT
    while process.poll() is None and time.monotonic() < deadline:
        try:
            if greeted(address, port, tls):
                return True
        except OSError:
            pass
        time.sleep(0.005)
    return False


def descendants(pid):
    found = []
    for task in pathlib.Path(f"/proc/{pid}/task").glob("*/children"):
        try:
            children = [int(child) for child in task.read_text().split()]
        except OSError:
            continue
        for child in children:
            found += [child, *descendants(child)]
    return found


def kill_all():
    """Ends every process below this one; orphans come to us, so the loop ends when nothing is left."""
    while True:
        for pid in descendants(os.getpid()):
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
        try:
            os.waitpid(-1, 0)
        except ChildProcessError:
            return


def run(plan):
    """True when the server accepts connections; what it says lies in the file "output" of its folder."""
    with open(plan.work / "output", "wb") as output:
        process = subprocess.Popen([str(part) for part in plan.command], env=plan.environment, cwd=plan.work,
                                   stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                   preexec_fn=die_with_parent)
    return accepts(plan.address, plan.port, process, plan.tls)


def renew(plan):
    """The same server once more, with another certificate."""
    plan.tls.certificates.make()
    kill_all()
    print("renewed" if run(plan) else "failed", flush=True)


def start(kind, servers, work, folder, address, tls, refuse_passive):
    last = ""
    for attempt in range(5):  # another program may take the port between the choice and the server's start
        place = work / str(attempt)
        place.mkdir()
        plan = Plan(kind, servers, place, folder, address, free_port(address), tls, refuse_passive)
        if run(plan):
            return plan
        kill_all()
        last = (place / "output").read_text(errors="replace").strip().splitlines()[-3:]
    sys.exit(f"real_server.py: {kind} does not start on {address}: {' / '.join(last)}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kind", choices=KINDS)
    parser.add_argument("--folder", required=True, type=pathlib.Path)
    parser.add_argument("--address", default="127.0.0.1")
    parser.add_argument("--servers", default=default_cache(), type=pathlib.Path)
    parser.add_argument("--tls", choices=("explicit", "implicit"))
    parser.add_argument("--tls-version", choices=("1.2", "1.3"))
    parser.add_argument("--self-signed", action="store_true", help="a certificate of its own, renewed by \"renew\"")
    parser.add_argument("--refuse-passive", action="store_true")
    options = parser.parse_args()
    prctl(PR_SET_CHILD_SUBREAPER, 1)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    with tempfile.TemporaryDirectory(prefix="ftp-server-") as work:
        tls = None
        if options.tls:
            made = SelfSigned(pathlib.Path(work)) if options.self_signed else Certificates(options.servers.parent)
            tls = Tls(options.tls == "implicit", options.tls_version, made)
        try:
            plan = start(options.kind, options.servers, pathlib.Path(work), options.folder.resolve(), options.address,
                         tls, options.refuse_passive)
            told = {"port": plan.port, "user": plan.user, "password": PASSWORD}
            if options.refuse_passive:
                told["log"] = str(plan.log)
            if tls:
                told["authority"] = str(tls.certificates.authority)
            print(json.dumps(told), flush=True)
            for line in sys.stdin:
                if line.strip() == "kill":
                    kill_all()
                    print("killed", flush=True)
                if line.strip() == "renew":
                    renew(plan)
        finally:
            kill_all()


if __name__ == "__main__":
    main()
