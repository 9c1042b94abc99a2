"""Throws damaged requests and damaged WebSocket traffic at the preview's server, whose sanitizers watch. Seconds and seed come
from OMBREL_FUZZ_SECONDS and OMBREL_FUZZ_SEED."""
import json
import os
import random
import time

from preview_host import Host, Page, connect, request, upgrade_headers

SECONDS = float(os.environ.get("OMBREL_FUZZ_SECONDS", "6"))
MESSAGES = [json.dumps(message).encode() for message in (
    {"type": "head", "number": 1, "orientation": [0, 0.6, 0, 0.8]},
    {"type": "received", "frame": 1},
    {"type": "rate", "framesPerSecond": 60},
    {"type": "recenter"},
    {"type": "controller", "id": 1, "pressed": ["grip"], "touched": [], "trackpad": [0, 1], "trigger": 0.5})]
PIECES = [b"[" * 4000, b"{\"type\":", b"1e400", b"-0", b"null", b"\xed\xa0\x80", b"\\u0000", b"\xff" * 9, b"\r\n\r\n", b"\x00"]


def damage(dice, data):
    data = bytearray(data)
    for _ in range(dice.randrange(5)):
        at = dice.randrange(len(data) + 1)
        match dice.randrange(4):
            case 0:
                data[at:at + dice.randrange(8)] = dice.randbytes(dice.randrange(8))
            case 1:
                data[at:at] = dice.choice(PIECES)
            case 2:
                del data[at:at + dice.randrange(40)]
            case 3:
                data[at:at] = data[:dice.randrange(60)]
    return bytes(data)


def throw_request(dice, port):
    head = "".join(f"{name}: {value}\r\n" for name, value in upgrade_headers(f"http://localhost:{port}").items())
    target = dice.choice(["/", "/controllers", "/headset", "/hands"])
    good = f"GET {target} HTTP/1.1\r\nHost: localhost:{port}\r\n{head}\r\n".encode()
    with connect(port) as sock:
        sock.sendall(damage(dice, good))
        sock.settimeout(0.005)
        sock.recv(4096)


def throw_messages(dice, port):
    page = Page(port, dice.choice(["/headset", "/hands"]))
    with page.sock:
        page.sock.settimeout(0.02)
        for _ in range(dice.randrange(1, 8)):
            payload = damage(dice, dice.choice(MESSAGES))[:60000]
            if dice.random() < 0.2:
                page.sock.sendall(damage(dice, b"\x81\x85\x00\x00\x00\x00hello"))
            else:
                page.send_bytes(dice.choice([1, 1, 1, 1, 0, 2, 8, 9, 10]), payload, dice.random() < 0.9)
        page.sock.recv(4096)


def test_damaged_traffic_neither_ends_the_server_nor_shuts_others_out():
    seed = int(os.environ.get("OMBREL_FUZZ_SEED", random.randrange(1 << 32)))
    print(f"OMBREL_FUZZ_SEED={seed}")
    dice = random.Random(seed)
    host = Host()
    end = time.monotonic() + SECONDS
    thrown = 0
    while time.monotonic() < end:
        try:
            dice.choice([throw_request, throw_messages])(dice, host.port)
        except (OSError, AssertionError):
            pass  # refused, cut off, or left without an answer
        thrown += 1
    assert host.process.poll() is None and thrown > 20
    assert request(host.port)[0] == 200
    host.close()
