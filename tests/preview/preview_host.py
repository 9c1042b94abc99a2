"""The preview's server without a driver (preview_host.cpp) as a process of a test, and a WebSocket client of bare bytes."""
import base64
import json
import os
import queue
import socket
import struct
import subprocess
import threading
import time

WAIT_S = 20


class Host:
    def __init__(self, port=0):
        self.process = subprocess.Popen([os.environ["OMBREL_TEST_PREVIEW_HOST"], str(port)], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True, bufsize=1)
        self.lines = queue.Queue()
        threading.Thread(target=self._read, daemon=True).start()
        self.port = self.wait_for("port")["port"]

    def _read(self):
        for line in self.process.stdout:
            self.lines.put(json.loads(line))

    def command(self, *words):
        print(*words, file=self.process.stdin, flush=True)

    def wait_for(self, key, accept=lambda line: True):
        """The next line with `key` that is accepted."""
        deadline = time.monotonic() + WAIT_S
        while True:
            line = self.lines.get(timeout=max(0.01, deadline - time.monotonic()))
            if key in line and accept(line):
                return line

    def newest(self):
        self.command("newest")
        return self.wait_for("newest")["newest"]

    def close(self):
        """Ends it; a sanitizer's finding is another exit code."""
        self.process.stdin.close()
        assert self.process.wait(WAIT_S) == 0


def connect(port):
    return socket.create_connection(("127.0.0.1", port), timeout=WAIT_S)


def read_all(sock):
    """What comes until the other side closes; a reset is a way to close."""
    parts = []
    try:
        while part := sock.recv(65536):
            parts.append(part)
    except ConnectionError:
        pass
    return b"".join(parts)


def request(port, target="/", method="GET", **headers):
    """(status code, headers as text, body) of an answer; Host is this machine unless given, None leaves a header out."""
    headers = {"Host": f"localhost:{port}", **{name.replace("_", "-"): value for name, value in headers.items()}}
    head = "".join(f"{name}: {value}\r\n" for name, value in headers.items() if value is not None)
    with connect(port) as sock:
        sock.sendall(f"{method} {target} HTTP/1.1\r\n{head}\r\n".encode())
        answer = read_all(sock)
    head, _, body = answer.partition(b"\r\n\r\n")
    return int(head.split(b" ", 2)[1]) if head else None, head.decode(), body


def upgrade_headers(origin):
    key = base64.b64encode(os.urandom(16)).decode()
    return {"Connection": "Upgrade", "Upgrade": "websocket", "Sec-WebSocket-Version": "13", "Sec-WebSocket-Key": key,
            "Origin": origin}


class Page:
    """The WebSocket of a page that does as it is told."""

    def __init__(self, port, path="/headset"):
        self.sock = connect(port)
        host = f"localhost:{port}"
        head = "".join(f"{name}: {value}\r\n" for name, value in upgrade_headers(f"http://{host}").items())
        self.sock.sendall(f"GET {path} HTTP/1.1\r\nHost: {host}\r\n{head}\r\n".encode())
        answer = b""
        while not answer.endswith(b"\r\n\r\n"):
            byte = self.sock.recv(1)
            assert byte, answer
            answer += byte
        assert b" 101 " in answer, answer

    def send_bytes(self, opcode, payload, final=True):
        length = len(payload)
        size = bytes([0x80 | length]) if length < 126 else b"\xfe" + struct.pack(">H", length)
        mask = os.urandom(4)
        masked = bytes(byte ^ mask[i % 4] for i, byte in enumerate(payload))
        self.sock.sendall(bytes([(0x80 if final else 0) | opcode]) + size + mask + masked)

    def send(self, message):
        self.send_bytes(1, json.dumps(message).encode())

    def receive(self):
        """(opcode, payload) of the next message, its fragments joined; pings are answered."""
        message, kind = b"", 0
        while True:
            first, payload = self._receive_fragment()
            opcode = first & 0x0F
            if opcode == 9:
                self.send_bytes(10, payload)
            elif opcode > 7:  # control frames may come between the fragments of a message
                return opcode, payload
            else:
                message, kind = message + payload, kind or opcode
                if first & 0x80:
                    return kind, message

    def _receive_fragment(self):
        first, second = self._exactly(2)
        length = second & 0x7F
        if length == 126:
            length, = struct.unpack(">H", self._exactly(2))
        elif length == 127:
            length, = struct.unpack(">Q", self._exactly(8))
        return first, self._exactly(length)

    def receive_text(self):
        """The next text, past pictures that are on their way."""
        while True:
            opcode, payload = self.receive()
            if opcode == 1:
                return json.loads(payload)

    def receive_frame(self):
        """The number of the next picture."""
        return struct.unpack("<I", self.receive_picture()[:4])[0]

    def receive_picture(self):
        """The next binary message: what is known of the picture, and the JPEG itself."""
        while True:
            opcode, payload = self.receive()
            if opcode == 2:
                return payload

    def acknowledge(self, frame):
        self.send({"type": "received", "frame": frame})

    def close_code(self):
        """Why the server closes, past all that comes before; None when it just hangs up."""
        try:
            while True:
                opcode, payload = self.receive()
                if opcode == 8:
                    return struct.unpack(">H", payload[:2])[0]
        except ConnectionError:
            return None

    def _exactly(self, count):
        data = b""
        while len(data) < count:
            part = self.sock.recv(count - len(data))
            if not part:
                raise ConnectionError("closed")
            data += part
        return data
