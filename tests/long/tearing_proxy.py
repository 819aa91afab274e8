"""Stands between an FTP client and a server and tears the connections in two, at a byte of its choice."""
import re
import select
import socket
import struct
import threading

RESET = struct.pack("ii", 1, 0)  # SO_LINGER: the close becomes a reset


class Tear:
    """What happens to a connection once so many bytes have gone through it: "close", "reset" or "stall"."""

    def __init__(self, on_data, after, kind):
        self.on_data, self.after, self.kind = on_data, after, kind


class TearingProxy:
    """Listens on a free loopback port and leads to the server's. `next_tear` is used up by the first connection that it
    fits. Ports that the server names in 227 and 229 are replaced by ones that lead through this proxy too."""

    def __init__(self, server_port):
        self.server_port = server_port
        self.next_tear = None
        self.torn = 0  # how many connections
        self.lock = threading.Lock()
        self.held = []  # stalled connections
        self.listener = self._listen()
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self._accept, args=(self.listener, server_port, False, 1 << 30), daemon=True).start()

    @staticmethod
    def _listen():
        listener = socket.socket()
        listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        listener.bind(("127.0.0.1", 0))
        listener.listen(16)
        return listener

    def release(self):
        """Closes what was stalled."""
        with self.lock:
            held, self.held = self.held, []
        for one in held:
            one.close()

    def _accept(self, listener, port, is_data, count):
        listener.settimeout(30 if is_data else None)
        for _ in range(count):
            try:
                client, _address = listener.accept()
            except OSError:
                break
            try:
                server = socket.create_connection(("127.0.0.1", port))
            except OSError:
                client.close()
                continue
            for one in (client, server):
                one.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            _Pair(self, client, server, is_data)
        if is_data:
            listener.close()

    def lead_to(self, port):
        listener = self._listen()
        threading.Thread(target=self._accept, args=(listener, port, True, 1), daemon=True).start()
        return listener.getsockname()[1]

    def take_tear(self, is_data):
        with self.lock:
            tear = self.next_tear
            if tear is None or tear.on_data != is_data:
                return None
            self.next_tear = None
            return tear


class _Pair:
    """One connection, with a thread of its own: a socket that another thread waits for cannot be reset."""

    def __init__(self, proxy, client, server, is_data):
        self.proxy, self.client, self.server, self.is_data = proxy, client, server, is_data
        self.tear = proxy.take_tear(is_data) if is_data else None
        self.passed = 0
        self.line = b""  # of the server, not yet at its end
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        open_ends = [self.client, self.server]
        try:
            while open_ends:
                for source in select.select(open_ends, [], [])[0]:
                    target = self.server if source is self.client else self.client
                    data = source.recv(65536)
                    if not data:
                        open_ends.remove(source)
                        target.shutdown(socket.SHUT_WR)
                    elif not self._pass(data, target):
                        return
        except OSError:
            pass
        self.client.close()
        self.server.close()

    def _pass(self, data, target):
        """False when the connection has been torn."""
        if target is self.client and not self.is_data:
            data = self.line + data
            end = data.rfind(b"\n") + 1
            data, self.line = self._with_own_ports(data[:end]), data[end:]
        # A control connection lives long: a tear wanted since counts from now on.
        if self.tear is None and not self.is_data:
            self.tear = self.proxy.take_tear(False)
            self.passed = 0
        if self.tear is None or self.tear.after - self.passed > len(data):
            self.passed += len(data)
            target.sendall(data)
            return True
        data = data[:self.tear.after - self.passed]
        # There are servers that carry out a command whose line has no end: half a name is a name, too.
        target.sendall(data[:data.rfind(b"\n") + 1] if target is self.server and not self.is_data else data)
        self._break(self.tear.kind)
        return False

    def _break(self, kind):
        with self.proxy.lock:
            self.proxy.torn += 1
            if kind == "stall":
                self.proxy.held += [self.client, self.server]
                return
        for one in (self.client, self.server):
            if kind == "reset":
                one.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, RESET)
            one.close()

    def _with_own_ports(self, text):
        def extended(match):
            return b"|||%d|" % self.proxy.lead_to(int(match[1]))

        def passive(match):
            port = self.proxy.lead_to(int(match[1]) * 256 + int(match[2]))
            return b"(127,0,0,1,%d,%d)" % (port // 256, port % 256)

        text = re.sub(rb"\|\|\|(\d+)\|", extended, text)
        return re.sub(rb"\(\d+,\d+,\d+,\d+,(\d+),(\d+)\)", passive, text)


def random_tear(noise, sizes):
    """A tear of some kind, at a byte that matters for transfers of such sizes."""
    on_data = noise.random() < 0.6
    if on_data:
        size = noise.choice(sizes)
        after = noise.choice([0, 1, size // 2, max(size - 1, 0), size, noise.randint(0, size)])
    else:
        after = noise.randint(0, 400)
    # A stall costs the time-out. Data whose connection is closed in good order cannot be told from all of it.
    kind = "stall" if noise.random() < 0.04 else "reset" if on_data else noise.choice(["close", "reset"])
    return Tear(on_data, after, kind)
