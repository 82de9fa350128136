#!/usr/bin/env python3
"""terminal.py SCRIPT COMMAND...: runs the command at a terminal of 24 lines of 80 characters, and
follows the script, line by line:

    expect REGEX      it writes this, from where the last one ended
    size LINES COLUMNS
    type TEXT
    signal NAME
    run SHELL COMMAND
    ends              with exit status 0, and leaves the terminal as it was
"""
import fcntl
import os
import pty
import re
import select
import signal
import struct
import subprocess
import sys
import termios
import time

PATIENCE = 20


def size(fd, lines, columns):
    fcntl.ioctl(fd, termios.TIOCSWINSZ, struct.pack("HHHH", int(lines), int(columns), 0, 0))


class Terminal:
    def __init__(self, command):
        self.fd, self.inner = pty.openpty()
        size(self.fd, 24, 80)
        self.before = termios.tcgetattr(self.inner)
        self.child = subprocess.Popen(command, stdin=self.inner, stdout=self.inner,
                                      stderr=self.inner, start_new_session=True,
                                      preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        self.text, self.all = "", ""

    def read(self, seconds):
        if select.select([self.fd], [], [], seconds)[0]:
            read = os.read(self.fd, 65536).decode()
            self.text += read
            self.all += read

    def expect(self, pattern):
        end = time.monotonic() + PATIENCE
        while not (found := re.search(pattern, self.text, re.DOTALL)):
            if time.monotonic() > end:
                sys.exit(f"not written: {pattern}\nbut: {self.text[-3000:]!r}")
            self.read(0.1)
        self.text = self.text[found.end():]

    def ends(self):
        end = time.monotonic() + PATIENCE
        while self.child.poll() is None:
            self.read(0.1)
            if time.monotonic() > end:
                sys.exit("it does not end")
        self.read(0.1)
        if self.child.returncode != 0:
            sys.exit(f"exit status {self.child.returncode}: {self.text!r}")
        if termios.tcgetattr(self.inner) != self.before:
            sys.exit("the terminal is not as it was")
        for on, off in (("\033[?1049h", "\033[?1049l"), ("\033[?25l", "\033[?25h")):
            if not 0 <= self.all.rfind(on) < self.all.rfind(off):
                sys.exit(f"no {off!r} at the end: {self.all[-300:]!r}")


def main():
    with open(sys.argv[1], encoding="utf-8") as script:
        lines = script.read().splitlines()
    terminal = Terminal(sys.argv[2:])
    try:
        for line in lines:
            word, _, rest = line.strip().partition(" ")
            if word == "expect":
                terminal.expect(rest)
            elif word == "size":
                size(terminal.fd, *rest.split())
            elif word == "type":
                os.write(terminal.fd, rest.encode().decode("unicode_escape").encode())
            elif word == "signal":
                terminal.child.send_signal(getattr(signal, rest))
            elif word == "run":
                subprocess.run(rest, shell=True, check=True)
            elif word == "ends":
                terminal.ends()
            else:
                sys.exit(f"what is '{line}'?")
    finally:
        terminal.child.kill()


main()
