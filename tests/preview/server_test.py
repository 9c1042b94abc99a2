"""What the preview's server lets in, what it refuses, and how pages get their frames."""
import socket
import time

import pytest

from preview_host import Host, Page, connect, read_all, request, upgrade_headers

HEAD = {"type": "head", "number": 1, "orientation": [0, 0, 0, 1]}


@pytest.fixture
def host():
    started = Host()
    yield started
    started.close()


def test_the_pages_and_their_parts_are_served(host):
    for target in "/", "/controllers", "/headset.js", "/style.css", "/icon.svg", "/?from=here":
        status, _, body = request(host.port, target)
        assert status == 200 and body
    assert b"<title>Ombrel headset</title>" in request(host.port)[2]


def test_both_loopback_addresses_answer_and_no_other(host):
    with socket.create_connection(("::1", host.port), timeout=5) as sock:
        sock.sendall(b"GET / HTTP/1.1\r\nHost: [::1]\r\n\r\n")
        assert read_all(sock).startswith(b"HTTP/1.1 200")
    with pytest.raises(ConnectionRefusedError):
        socket.create_connection(("127.0.0.2", host.port), timeout=5)


def test_a_page_is_told_to_load_nothing_from_elsewhere(host):
    head = request(host.port)[1]
    assert "Content-Security-Policy: default-src 'self'" in head and "X-Content-Type-Options: nosniff" in head


@pytest.mark.parametrize("status, target, headers", [
    (421, "/", {"Host": "example.org"}),
    (421, "/", {"Host": None}),
    (403, "/", {"Origin": "http://example.org"}),
    (403, "/", {"Origin": "null"}),
    (404, "/../secret", {}),
    (405, "/", {"method": "POST"}),
    (405, "/", {"method": "OPTIONS"}),
])
def test_other_hosts_origins_pages_and_methods_are_refused(host, status, target, headers):
    assert request(host.port, target, **headers)[0] == status


@pytest.mark.parametrize("status, target, origin, name", [
    (403, "/headset", "http://example.org", None),
    (403, "/headset", "http://localhost:1", None),
    (403, "/headset", None, None),
    (421, "/headset", "http://example.org", "example.org"),
    (404, "/elsewhere", "own", None),
])
def test_a_socket_opens_for_own_pages_alone(host, status, target, origin, name):
    own = f"localhost:{host.port}"
    headers = upgrade_headers(f"http://{own}" if origin == "own" else origin)
    assert request(host.port, target, Host=name or own, **headers)[0] == status


def test_two_hosts_in_one_request_are_none(host):
    with connect(host.port) as sock:
        sock.sendall(b"GET / HTTP/1.1\r\nHost: localhost\r\nHost: example.org\r\n\r\n")
        assert read_all(sock).startswith(b"HTTP/1.1 421")


@pytest.mark.parametrize("data", [b"GET / HTTP/1.1\r\nHost: localhost\r\nX: " + b"x" * 9000, b"\x16\x03\x01\x02" * 3000])
def test_a_request_that_is_too_long_or_none_ends_the_connection(host, data):
    with connect(host.port) as sock:
        try:
            sock.sendall(data)
        except ConnectionError:
            pass
        assert b"200 OK" not in read_all(sock)
    assert request(host.port)[0] == 200


def test_a_request_that_does_not_come_is_not_waited_for(host):
    with connect(host.port) as sock:
        sock.sendall(b"GET / HT")
        begin = time.monotonic()
        assert read_all(sock) == b""
        assert time.monotonic() - begin < 10


@pytest.mark.parametrize("code, opcode, payload", [
    (1009, 1, b"x" * 5000),
    (1008, 1, b"not json"),
    (1008, 1, b'{"type":"received","frame":123456}'),
    (1007, 1, b"\xff\xfe"),
    (1002, 3, b""),
])
def test_a_message_that_is_none_closes_the_page_and_no_other(host, code, opcode, payload):
    page, other = Page(host.port), Page(host.port)
    page.send_bytes(opcode, payload)
    assert page.close_code() == code
    while not other.receive_text()["leads"]:
        pass
    other.send(HEAD)
    host.wait_for("head")


def test_a_page_that_answers_no_ping_is_given_up(host):
    silent, other = Page(host.port), Page(host.port)
    begin = time.monotonic()
    while not other.receive_text()["leads"]:
        pass
    assert time.monotonic() - begin < 10
    silent.sock.close()


def test_a_thousand_connections_are_refused_and_the_session_goes_on(host):
    page = Page(host.port)
    frame = page.receive_frame()
    crowd = [connect(host.port) for _ in range(1000)]
    page.acknowledge(frame)
    assert page.receive_frame() > frame
    refused = 0
    for sock in crowd:
        sock.settimeout(0.001)
        try:
            refused += sock.recv(1) == b""
        except ConnectionError:
            refused += 1
        except TimeoutError:
            pass
    assert refused >= 1000 - 64
    for sock in crowd:
        sock.close()
    deadline = time.monotonic() + 10
    while request(host.port)[0] != 200 and time.monotonic() < deadline:
        time.sleep(0.1)
    assert request(host.port)[0] == 200


def test_of_a_role_eight_pages_are_let_in(host):
    pages = [Page(host.port) for _ in range(8)]
    for page in pages:
        page.receive_text()  # it has joined
    own = f"localhost:{host.port}"
    assert request(host.port, "/headset", **upgrade_headers(f"http://{own}"))[0] == 503
    Page(host.port, "/hands")


def test_a_slow_page_gets_the_newest_frame_and_not_the_next_one(host):
    page = Page(host.port)
    last = page.receive_frame()
    for _ in range(5):
        time.sleep(0.3)  # some twenty frames
        before = host.newest()
        page.acknowledge(last)
        last = page.receive_frame()
        assert last > before and host.newest() - last <= 2
