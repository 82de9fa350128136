"""Writes vlans.pcap and streams.pcap: what a neighbour of a switch sends, as the switch hears it.

Usage: make_captures.py [DIR]. The files go to DIR, or else beside this script. Nothing in them is
drawn by lot or taken from the clock.
"""

import struct
import sys
from pathlib import Path

NEIGHBOUR = bytes.fromhex("020000000099")
START = 1_000_000_000  # any time will do

New, JoinIn, In, JoinMt, Mt, Lv = range(6)
AskingFailed, Ready, ReadyFailed = range(1, 4)


def packed(numbers, base, width):
    """Numbers below base, so many a byte, the first on top."""
    padded = numbers + [0] * (-len(numbers) % width)
    out = bytearray()
    for i in range(0, len(padded), width):
        byte = 0
        for number in padded[i : i + width]:
            byte = byte * base + number
        out.append(byte)
    return bytes(out)


def vector(first_value, events, declarations=(), leave_all=False):
    header = len(events) | (0x2000 if leave_all else 0)
    return (
        struct.pack(">H", header)
        + first_value
        + packed(list(events), 6, 3)
        + packed(list(declarations), 4, 4)
    )


class Protocol:
    def __init__(self, address, ethertype, has_list_length):
        self.head = bytes.fromhex(address) + NEIGHBOUR + struct.pack(">H", ethertype)
        self.has_list_length = has_list_length

    def message(self, kind, length, *vectors):
        attributes = b"".join(vectors) + b"\0\0"
        size = struct.pack(">H", len(attributes)) if self.has_list_length else b""
        return bytes([kind, length]) + size + attributes

    def frame(self, *messages):
        """Version 0, the messages, an EndMark, and padding up to the shortest frame."""
        return (self.head + b"\0" + b"".join(messages) + b"\0\0").ljust(60, b"\0")


mvrp = Protocol("0180c2000021", 0x88F5, False)
msrp = Protocol("0180c200000e", 0x22EA, True)


def vlans(first, *events, leave_all=False):
    return vector(struct.pack(">H", first), events, leave_all=leave_all)


def vlan_frame(*vectors):
    return mvrp.frame(mvrp.message(1, 2, *vectors))


def domains(srclass, priority, vid, *events, leave_all=False):
    first = struct.pack(">BBH", srclass, priority, vid)
    return msrp.message(4, 4, vector(first, events, leave_all=leave_all))


# Class A at 8000 frames a second: one frame of 224 bytes in each interval, priority 3.
def talker_value(stream, dmac, latency):
    return stream + dmac + struct.pack(">HHHBI", 2, 224, 1, 3 << 5 | 1 << 4, latency)


def talkers(stream, dmac, latency, *events):
    return msrp.message(1, 25, vector(talker_value(stream, dmac, latency), events))


def failed_talkers(stream, dmac, latency, code, *events):
    failure = bytes.fromhex("8000020000000077") + bytes([code])
    return msrp.message(2, 34, vector(talker_value(stream, dmac, latency) + failure, events))


def listeners(stream, events, declarations, leave_all=False):
    return msrp.message(3, 8, vector(stream, events, declarations, leave_all))


# A neighbour declares VLANs 10 to 13, twice as MVRP has it. Then its LeaveAll timer fires: it
# declares 10 and 11 anew and has lost interest in 12 and 13. Later it takes 11 back by a Leave and
# adds 100. When the switch has a LeaveAll of its own, it stands by both.
VLANS = [
    (0.0, vlan_frame(vlans(10, JoinMt, JoinMt, JoinMt, JoinMt))),
    (0.2, vlan_frame(vlans(10, JoinMt, JoinMt, JoinMt, JoinMt))),
    (2.0, vlan_frame(vlans(10, JoinMt, JoinMt, leave_all=True))),
    (2.2, vlan_frame(vlans(10, JoinMt, JoinMt))),
    (5.0, vlan_frame(vlans(10, JoinIn, Lv), vlans(100, New))),
    (16.2, vlan_frame(vlans(10, JoinIn), vlans(100, JoinIn))),
]

# A neighbour has class A, and two streams to offer: their talkers stand behind it, with stream ids
# and destination addresses in a row. It has listeners for a third stream as well. Then bandwidth
# runs out somewhere behind it: the second stream becomes Talker Failed, and after its LeaveAll for
# listeners the third one's are Asking Failed. At the LeaveAll of the switch it stands by all that.
STREAM = bytes.fromhex("0200000000550001")
OTHER_STREAM = bytes.fromhex("0200000000660000")
SECOND_STREAM = bytes.fromhex("0200000000550002")
DMAC = bytes.fromhex("91e0f000fe00")
SECOND_DMAC = bytes.fromhex("91e0f000fe01")
STREAMS = [
    (0.0, msrp.frame(domains(6, 3, 2, JoinMt))),
    (0.5, msrp.frame(talkers(STREAM, DMAC, 125_000, New, New))),
    (0.7, msrp.frame(talkers(STREAM, DMAC, 125_000, JoinIn, JoinIn))),
    (1.0, msrp.frame(listeners(OTHER_STREAM, [New], [Ready]), domains(6, 3, 2, JoinIn))),
    (
        3.0,
        msrp.frame(
            talkers(SECOND_STREAM, SECOND_DMAC, 125_000, Lv),
            failed_talkers(SECOND_STREAM, SECOND_DMAC, 125_000, 1, New),
        ),
    ),
    (4.0, msrp.frame(listeners(OTHER_STREAM, [JoinMt], [AskingFailed], leave_all=True))),
    (
        14.5,
        msrp.frame(
            talkers(STREAM, DMAC, 125_000, JoinIn),
            failed_talkers(SECOND_STREAM, SECOND_DMAC, 125_000, 1, JoinIn),
            domains(6, 3, 2, JoinIn),
        ),
    ),
    (16.0, msrp.frame(listeners(OTHER_STREAM, [JoinIn], [AskingFailed]))),
]


def write(path, story):
    with open(path, "wb") as out:
        out.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 262144, 1))
        for seconds, frame in story:
            time = round(seconds * 1_000_000)
            out.write(
                struct.pack(
                    "<IIII",
                    START + time // 1_000_000,
                    time % 1_000_000,
                    len(frame),
                    len(frame),
                )
            )
            out.write(frame)


if __name__ == "__main__":
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).parent
    write(folder / "vlans.pcap", VLANS)
    write(folder / "streams.pcap", STREAMS)
