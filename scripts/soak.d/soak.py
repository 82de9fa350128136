#!/usr/bin/env python3
"""The two sides of scripts/soak.

    soak.py storm APPLICATION PID INTERFACE...    frames, until SIGTERM; prints how many
    soak.py join APPLICATION INTERFACE INTERFACE  joins on the first; 0 if the agent answers
    soak.py crowd APPLICATION MINUTES PID SOCKET compared|sanitized
                                                  observers and metrics clients; watches the agent
"""
import os
import random
import re
import select
import selectors
import signal
import socket
import statistics
import struct
import subprocess
import sys
import time
from pathlib import Path

OBSERVER = Path(__file__).resolve().parents[2] / "examples/observer.py"
dice = random.Random(1)


# --- frames

ADDRESS = {"mvrp": "0180c2000021 020000000099 88f5", "msrp": "0180c200000e 020000000099 22ea"}
LENGTH = {"mvrp": {1: 2}, "msrp": {1: 25, 2: 34, 3: 8, 4: 4}}
STREAM = bytes.fromhex("020000000001")


def first_value(application, type_, number):
    if application == "mvrp":
        return struct.pack(">H", dice.randrange(1, 4095 - number))
    if type_ == 4:
        return bytes([dice.choice((5, 6)), dice.choice((2, 3)), 0, 2])
    stream = struct.pack(">H", dice.randrange(4096 - number))
    talker = (STREAM + stream + bytes.fromhex("91e0f000") + stream +
              bytes.fromhex("0002 0064 0001 70 000001f4"))
    return {1: talker, 2: talker + bytes(8) + b"\x08", 3: STREAM + stream}[type_]


def message(application, type_, first, events, leave_all=False):
    body = struct.pack(">H", (0x2000 if leave_all else 0) | len(events)) + first
    padded = events + [0, 0]
    for i in range(0, len(events), 3):
        a, b, c = padded[i: i + 3]
        body += bytes([(a * 6 + b) * 6 + c])
    if application == "msrp" and type_ == 3:
        body += dice.randbytes((len(events) + 3) // 4)
    body += bytes(2)
    head = bytes([type_, len(first)])
    return head + (struct.pack(">H", len(body)) if application == "msrp" else b"") + body


def frame(application, messages):
    body = b""
    for one in messages:
        body = body + one if len(body) + len(one) < 1490 else body
    return bytes.fromhex(ADDRESS[application]) + b"\0" + body + bytes(2)


# The moods of the storm: the events of a vector, and how often it has a LeaveAll.
MOODS = {"register": ([0, 1, 1, 1, 3], 0), "leave": ([5], 0), "all": ([0, 1, 2, 3, 4, 5], 0.02),
         "refresh": ([1], 0.3), "leave all": ([1, 5], 1), "mutated": ([0, 1, 2, 3, 4, 5], 0.1),
         "noise": ([0], 0)}
SIZES, FEW = (1, 1, 1, 3, 3, 3, 20, 20, 100, 1000), (1, 3, 20)


def good_frame(application, mood):
    events, leave_all = MOODS[mood]
    types = sorted(dice.choices(list(LENGTH[application]), k=dice.randint(1, 4)))
    messages = []
    for type_ in types:
        number = dice.choice(FEW if mood == "mutated" else SIZES)
        number = 1 if type_ == 4 else number
        messages.append(message(application, type_, first_value(application, type_, number),
                                dice.choices(events, k=number), dice.random() < leave_all))
    return frame(application, messages)


def mutated(good):
    out = bytearray(good)
    for _ in range(dice.randint(1, 8)):
        at = dice.randrange(14, len(out)) if len(out) > 14 else 14
        kind = dice.randrange(4)
        if kind == 0 and at < len(out):
            out[at] = dice.randrange(256)
        elif kind == 1:
            del out[at: at + dice.randrange(20)]
        elif kind == 2:
            out[at:at] = dice.randbytes(dice.randrange(20))
        else:
            out[at:at] = out[at: at + dice.randrange(100)]
    return bytes(out[:1514])


def some_frame(application, mood):
    if mood == "noise":
        return bytes.fromhex(ADDRESS[application]) + dice.randbytes(dice.randrange(1, 1500))
    good = good_frame(application, mood)
    return mutated(good) if mood == "mutated" else good


def raw_socket(interface, ethertype=0):
    made = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
    made.bind((interface, ethertype))
    return made


def waiting(pid):
    """Bytes in the packet sockets of the agent's host."""
    with open(f"/proc/{pid}/net/packet", encoding="ascii") as sockets:
        return sum(int(line.split()[6]) for line in list(sockets)[1:])


def storm(application, pid, *interfaces):
    """In gusts. After each the agent gets through what waits, and has some seconds more: no leave
    timer of a type fires before there has been no further LeaveAll for a leave time, and where a
    broken stream id is another stream there is no end of those that are registered meanwhile."""
    out, sent, going = [raw_socket(interface) for interface in interfaces], 0, [True]
    for one in out:
        one.setblocking(False)
    signal.signal(signal.SIGTERM, lambda *_: going.clear())
    while going:
        gust_end = time.monotonic() + dice.uniform(2, 12)
        while going and time.monotonic() < gust_end:
            mood = dice.choice(list(MOODS))
            rate = 300 if mood in ("mutated", "noise") else dice.choice((500, 2000, 5000, 1e6))
            pool = [some_frame(application, mood) for _ in range(100)]
            begun, mood_time, here = time.monotonic(), dice.uniform(0.1, 2), 0
            while going and (now := time.monotonic() - begun) < mood_time:
                if here > now * rate:
                    time.sleep(0.01)
                    continue
                here += 1
                try:
                    out[here % 8 == 0].send(dice.choice(pool))
                    sent += 1
                except OSError:
                    pass  # no room at the moment
        calm = 0
        while going and calm < dice.randint(10, 70):
            time.sleep(0.1)
            calm = calm + 1 if waiting(pid) == 0 else 0
    print(sent)


# What is joined at the end, and what the agent says to it, and where: a bridge passes the VLAN on,
# a listener turns from Asking Failed to Ready.
JOINED = {"mvrp": (1, struct.pack(">H", 4000), rb"\x00\x01\x0f\xa0", 1),
          "msrp": (1, bytes.fromhex("0200000000090001 91e0f0000901 0002 0064 0001 70 000001f4"),
                   rb"\x02\x00\x00\x00\x00\x09\x00\x01.\x80", 0)}


def join(application, *interfaces):
    type_, value, answer, where = JOINED[application]
    out, answers = raw_socket(interfaces[0]), raw_socket(interfaces[where], 3)
    answers.settimeout(10)
    out.send(frame(application, [message(application, type_, value, [1])]))
    end = time.monotonic() + 10
    while time.monotonic() < end:
        data, sender = answers.recvfrom(65536)
        if sender[2] != socket.PACKET_OUTGOING and re.search(answer, data, re.DOTALL):
            return
    sys.exit("no answer")


# --- observers and metrics clients

METRICS = ("127.0.0.1", 9100)
REQUEST = b"GET /metrics HTTP/1.1\r\nHost: a\r\n\r\n"
# Kinds of clients: what they say at first, whether they read all, sip or read nothing, and how many
# seconds they live at most if nobody ends them.
READ, SIP, NOTHING = range(3)
OBSERVERS = {"reader": (b"", READ, 40), "checker": (b"", READ, 40), "sipper": (b"", SIP, 40),
             "staller": (b"", NOTHING, 15), "dying": (b"", READ, 0.5), "noisy": (b"x", READ, 5)}
SCRAPERS = {"get": (REQUEST, READ, 15), "silent": (b"", NOTHING, 15),
            "half": (REQUEST[:9], READ, 15), "dead": (REQUEST, NOTHING, 0.05),
            "garbage": (bytes(range(256)) * 20, READ, 15)}
# The scenes: which observers there are, and how many.
SCENES = [(list(OBSERVERS), 10), (list(OBSERVERS), 10), (["staller"], 3), (["sipper"], 2),
          (["staller", "sipper"], 4), (["reader"], 1), (["dying", "noisy"], 10),
          ([], 0)]


class Client:
    def __init__(self, kind, address):
        self.kind, self.data, self.text = kind, b"", b""
        first, self.reads, life = {**OBSERVERS, **SCRAPERS}[kind]
        self.is_observer = kind in OBSERVERS
        self.end = time.monotonic() + dice.uniform(0, life)
        self.socket = socket.socket(socket.AF_UNIX if self.is_observer else socket.AF_INET)
        try:
            self.socket.settimeout(0.2)
            self.socket.connect(address)
            self.socket.sendall(first)
            self.socket.setblocking(False)
        except OSError:
            self.socket.close()
            raise

    def read(self):
        """False once the connection has ended."""
        try:
            more = self.socket.recv(100 if self.reads == SIP else 1 << 18)
        except BlockingIOError:
            return True
        except OSError:
            return False
        if self.kind == "get":
            self.text += more
        if self.kind == "checker":
            self.check(more)
        return more != b""

    def check(self, more):
        if not self.text and len(more) >= 12:
            self.text, more = more[:12], more[12:]
            assert self.text == b"MrpAttrL\0\1\0\0", self.text
        data, at = self.data + more, 0
        while len(data) - at >= 15:
            length, _, _, flags, first = struct.unpack(">IQhBB", data[at: at + 16].ljust(16, b"\0"))
            assert 11 <= length <= 262144 and flags in (0, 1), (length, flags)
            if len(data) - at < 4 + length:
                break
            end = at + 4 + length
            assert (first in (0, 1, 2) and length == 12) if flags else (
                first == 1 and data[end - 1] == 3), data[at:end]
            at = end
        self.data = data[at:]


class Crowd:
    def __init__(self, path, warm_up):
        self.path, self.clients, self.came = path, [], 0
        self.scrapes, self.samples, self.cut = 0, {}, 0
        self.selector = selectors.DefaultSelector()
        # At first more than there ever are later, for the heap to be as large as it gets.
        self.kinds, self.number, self.scene_end = ["reader"], 15, time.monotonic() + warm_up

    def enter(self, kind, address):
        try:
            client = Client(kind, address)
        except OSError:
            return  # too many at once: later, then
        self.came += client.is_observer
        self.clients.append(client)
        if client.reads == READ:
            self.selector.register(client.socket, selectors.EVENT_READ, client)

    def leave(self, client):
        if client.reads == READ:
            self.selector.unregister(client.socket)
        elif client.kind == "staller":
            look = select.poll()
            look.register(client.socket, 0)
            self.cut += look.poll(0) != []
        client.socket.close()
        self.clients.remove(client)
        if client.kind == "get" and b" 200 " in client.text[:20] and client.text.endswith(b"\n"):
            self.scrapes += 1
            self.samples = metrics_of(client.text.decode())

    def turn(self):
        now = time.monotonic()
        if now > self.scene_end:
            self.kinds, self.number = dice.choice(SCENES)
            self.scene_end = now + dice.uniform(4, 20)
            for client in list(self.clients):
                if client.is_observer and client.kind not in self.kinds:
                    self.leave(client)
        observers = sum(client.is_observer for client in self.clients)
        if observers < self.number:
            self.enter(dice.choice(self.kinds), self.path)
        if len(self.clients) - observers < 12 and dice.random() < 0.2:
            self.enter(dice.choice(list(SCRAPERS)), METRICS)
        for key, _ in self.selector.select(0.05):
            if not key.data.read():
                self.leave(key.data)
        for client in list(self.clients):
            if client.end < now or (client.reads == SIP and not client.read()):
                self.leave(client)

    def end(self):
        for client in list(self.clients):
            self.leave(client)


def metrics_of(text):
    """The values, those of one name and state added up."""
    samples = {}
    for line in text.splitlines():
        if found := re.match(r"(mrp_\w+)\{(?:.*state=\"(\w+)\")?.*\} (\S+)$", line):
            name = found[1] + (":" + found[2] if found[2] else "")
            samples[name] = samples.get(name, 0) + float(found[3])
    return samples


def scrape():
    """Empty if the agent has no time for it."""
    text = b""
    try:
        with socket.create_connection(METRICS, 10) as client:
            client.sendall(REQUEST)
            while more := client.recv(65536):
                text += more
    except OSError:
        pass
    return metrics_of(text.decode())


def attributes(samples):
    return {name: value for name, value in samples.items() if ":" in name}


class Agent:
    def __init__(self, pid):
        self.proc = f"/proc/{pid}"

    def rss(self):
        with open(self.proc + "/status", encoding="ascii") as status:
            return int(re.search(r"VmRSS:\s+(\d+)", status.read())[1])

    def descriptors(self):
        found = {}
        for name in os.listdir(self.proc + "/fd"):
            try:
                found[name] = os.readlink(f"{self.proc}/fd/{name}")
            except FileNotFoundError:
                pass  # closed meanwhile
        return found


def until(what, look, wanted, patience=60):
    end = time.monotonic() + patience
    while (found := look()) != wanted:
        if time.monotonic() > end:
            sys.exit(f"within {patience} s not: {what}: {sorted(found.items() ^ wanted.items())}")
        time.sleep(0.2)


def row(*cells):
    print("".join(f"{cell:>12}" for cell in cells), flush=True)


def crowd(application, minutes, pid, path, memory):
    here, stormy = os.path.realpath(__file__), ["ip", "netns", "exec", "storm", sys.executable]
    agent, seconds = Agent(pid), float(minutes) * 60
    warm_up = min(120, seconds / 6)
    until("the agent serves", lambda: {"it": os.path.exists(path)}, {"it": True})
    # Once through everything, so that what is made at the first use is there.
    scrape()
    with socket.socket(socket.AF_UNIX) as observer:
        observer.connect(path)
        observer.recv(1)
    time.sleep(1)
    calm, before = attributes(scrape()), agent.descriptors()
    start, begun = agent.rss(), time.monotonic()
    weather = subprocess.Popen(stormy + [here, "storm", application, pid, "s0", "s1"],
                               stdout=subprocess.PIPE)
    them, samples, next_row = Crowd(path, warm_up), [], 0
    row("minute", "RSS kB", "descriptors", "received", "malformed", "attributes", "observers",
        "scrapes")
    while (now := time.monotonic() - begun) < seconds:
        them.turn()
        if not samples or now - samples[-1][0] > 2:
            samples.append((now, agent.rss(), len(agent.descriptors())))
            registered = sum(value for name, value in them.samples.items()
                             if name.startswith("mrp_registrar_attributes"))
            if now >= next_row:
                row(f"{now / 60:.1f}", *samples[-1][1:],
                    int(them.samples.get("mrp_frames_received_total", 0)),
                    int(them.samples.get("mrp_parse_failures_total", 0)), int(registered),
                    them.came, them.scrapes)
                next_row += seconds / 12
    them.end()
    weather.terminate()
    sent = int(weather.communicate(timeout=30)[0])

    problems = []
    warm = [sample for sample in samples if sample[0] > warm_up]
    third = len(warm) // 3
    first, last = (statistics.median(rss for _, rss, _ in part)
                   for part in (warm[:third], warm[-third:]))
    until("the frames that wait are read", lambda: {"bytes": waiting(pid)}, {"bytes": 0}, 900)
    until("all has expired", lambda: attributes(scrape()), calm)
    received = scrape().get("mrp_frames_received_total", 0)
    print(f"frames: {sent} sent, {sent / seconds:.0f} a second; {received:.0f} received")
    print(f"observers: {them.came}, of which {them.cut} were sent away for stalling; "
          f"scrapes: {them.scrapes}")
    print(f"RSS, kB: {start} at the start, {first:.0f} in the first third, {last:.0f} in the last, "
          f"{max(rss for _, rss, _ in samples)} at most, {agent.rss()} at rest")
    # More than are served, with nobody to read, and gone at one and the same time.
    them.kinds, them.number, them.scene_end = ["staller"], 80, time.monotonic() + 60
    for _ in range(100):
        them.turn()
    most = max(len(agent.descriptors()), *(number for *_, number in samples))
    them.end()

    if memory == "compared" and last > first * 1.02 + 1024:
        problems.append("memory has grown")
    until("the descriptors of the start, and no other", agent.descriptors, before, 20)
    print(f"descriptors: {len(before)} at the start, {most} at most, {len(agent.descriptors())} "
          f"at rest")
    if not received > 1000 * float(minutes):
        problems.append("hardly a frame was received")

    observer = subprocess.Popen([sys.executable, OBSERVER, path],
                                stdout=subprocess.PIPE, text=True)
    key = int.from_bytes(JOINED[application][1][:8], "big")
    if subprocess.call(stormy + [here, "join", application, "s0", "s1"]) != 0:
        problems.append("a join is not answered")
    signal.signal(signal.SIGALRM, lambda *_: observer.kill())
    signal.alarm(30)
    for line in observer.stdout:
        if re.match(rf"\+ p0 type 1 key {key} .. IN$", line):
            break
    else:
        problems.append("an observer does not see the join")
    observer.kill()
    for problem in problems:
        print("problem:", problem)
    sys.exit(1 if problems else 0)


{"storm": storm, "join": join, "crowd": crowd}[sys.argv[1]](*sys.argv[2:])
