#!/usr/bin/env python3
"""observer.py SOCKET: follows a mirror stream, with docs/mirror-stream.md for all that it knows, and
prints the attributes that come (+) and go (-), a changed one as both; their values are passed over:

    + eth0 type 1 key 10 VO IN
"""
import socket
import struct
import sys

APPLICANT = "VO VP VN AN AA QA LA AO QO AP QP LO".split()
REGISTRAR = "IN LV MT".split()
# The collection of children of each type, and how their key is read.
ENUMERATION, INTERFACE, TEXT, U8, U64 = ">I", "", "", ">B", ">Q"
CHILDREN = {"Mrp::MrpStatus": (258, ENUMERATION), "Mrp::MrpApplicationDatabase": (259, INTERFACE),
            "Mrp::MrpIntfApplicant": (259, U8), "Mrp::MrpIntfTypeApplicant": (259, U64)}


class Entity:
    def __init__(self, type_):
        self.type, self.children, self.states = type_, {}, {}
        self.brought = set()  # since marker 0


def key_and_rest(form, data):
    size = struct.calcsize(form) if form else 2 + struct.unpack(">H", data[:2])[0]
    return (struct.unpack(form, data[:size])[0] if form else data[2:size].decode()), data[size:]


class Mirror:
    def __init__(self):
        self.entities, self.status = {}, None

    def message(self, number, attribute, flags, payload):
        if attribute == 136:
            assert payload[1] == 1, "the first section is the type"
            type_, _ = key_and_rest(TEXT, payload[6:])
            self.entities[number] = Entity(type_)
            self.status = number if type_ == "Mrp::MrpStatus" else self.status
            return
        entity = self.entities[number]
        collection, form = CHILDREN.get(entity.type, (None, None))
        value = payload[1:-1]
        if abs(attribute) == collection:
            if flags == 1 and payload[0] == 0:
                entity.brought = set()
            elif flags == 1 and payload[0] == 2:
                for key in entity.children.keys() - entity.brought:
                    self.child_is(entity, key, None)
            elif flags == 0:
                key, rest = key_and_rest(form, value)
                entity.brought.add(key)
                self.child_is(entity, key, struct.unpack(">Q", rest)[0] if attribute > 0 else None)
        elif entity.type == "Mrp::MrpAttrDatabase" and attribute in (259, 260):
            entity.states[attribute], = struct.unpack(">I", value)

    def child_is(self, entity, key, number):
        old = entity.children.pop(key, None)
        if number is not None:
            entity.children[key] = number
        if old not in (None, number):
            self.drop(old)

    def drop(self, number):
        for child in self.entities.pop(number).children.values():
            self.drop(child)

    def lines(self, number, path=()):
        entity = self.entities[number]
        if entity.type == "Mrp::MrpAttrDatabase":
            _, interface, type_, key = path
            if len(entity.states) == 2:
                yield (f"{interface} type {type_} key {key} {APPLICANT[entity.states[259]]} "
                       f"{REGISTRAR[entity.states[260]]}")
        for key, child in entity.children.items():
            yield from self.lines(child, path + (key,))


stream = socket.socket(socket.AF_UNIX)
stream.connect(sys.argv[1])
data, mirror, known = b"", Mirror(), set()
while more := stream.recv(65536):
    data += more
    if mirror.status is None and len(data) < 12:
        continue
    if data.startswith(b"MrpAttrL"):
        assert data[8:10] == b"\0\1", "another major version"
        data = data[12:]
    while len(data) >= 4 and len(data) >= 4 + struct.unpack(">I", data[:4])[0]:
        end = 4 + struct.unpack(">I", data[:4])[0]
        mirror.message(*struct.unpack(">QhB", data[4:15]), data[15:end])
        data = data[end:]
    now = set(mirror.lines(mirror.status)) if mirror.status is not None else set()
    for line in sorted(known - now):
        print("-", line, flush=True)
    for line in sorted(now - known):
        print("+", line, flush=True)
    known = now
print("end", flush=True)
