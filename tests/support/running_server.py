"""A real FTP server for scripts: see real_server.py, which keeps it alive."""
import json
import pathlib
import subprocess


class Server:
    """Runs from its construction to stop(); serves `folder` at `place` to `user` with `password`."""

    def __init__(self, kind, folder, *options):
        keeper = pathlib.Path(__file__).with_name("real_server.py")
        self.keeper = subprocess.Popen([keeper, kind, "--folder", str(folder), *options], stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE, text=True)
        told = json.loads(self.keeper.stdout.readline())
        self.port, self.user, self.password = str(told["port"]), told["user"], told["password"]
        self.authority = told.get("authority")
        self.place = f"127.0.0.1:{self.port}"

    def stop(self):
        self.keeper.stdin.close()
        self.keeper.wait()
