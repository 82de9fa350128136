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


class Terminal:
    def __init__(self, command):
        self.fd, self.inner = pty.openpty()
        self.size("24 80")
        self.before = termios.tcgetattr(self.inner)
        self.child = subprocess.Popen(command, stdin=self.inner, stdout=self.inner,
                                      stderr=self.inner, start_new_session=True,
                                      preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        self.text, self.all = "", ""

    def can_read(self, seconds):
        return bool(select.select([self.fd], [], [], seconds)[0])

    def wait(self, condition, otherwise):
        end = time.monotonic() + PATIENCE
        while not (result := condition()):
            if time.monotonic() > end:
                sys.exit(f"{otherwise}\nbut: {self.text[-3000:]!r}")
            if self.can_read(0.1):
                read = os.read(self.fd, 65536).decode()
                self.text += read
                self.all += read
        return result

    def expect(self, pattern):
        found = self.wait(lambda: re.search(pattern, self.text, re.DOTALL),
                          f"not written: {pattern}")
        self.text = self.text[found.end():]

    def size(self, text):
        lines, columns = map(int, text.split())
        fcntl.ioctl(self.fd, termios.TIOCSWINSZ, struct.pack("HHHH", lines, columns, 0, 0))

    def type(self, text):
        os.write(self.fd, text.encode().decode("unicode_escape").encode())

    def signal(self, name):
        self.child.send_signal(getattr(signal, name))

    def run(self, command):
        subprocess.run(command, shell=True, check=True)

    def ends(self, _):
        self.wait(lambda: self.child.poll() is not None and not self.can_read(0),
                  "it does not end")
        if self.child.returncode != 0:
            sys.exit(f"exit status {self.child.returncode}: {self.text!r}")
        if termios.tcgetattr(self.inner) != self.before:
            sys.exit("the terminal is not as it was")
        for on, off in (("\033[?1049h", "\033[?1049l"), ("\033[?25l", "\033[?25h")):
            if not 0 <= self.all.rfind(on) < self.all.rfind(off):
                sys.exit(f"no {off!r} at the end: {self.all[-300:]!r}")


terminal = Terminal(sys.argv[2:])
try:
    with open(sys.argv[1], encoding="utf-8") as script:
        for line in script:
            word, _, rest = line.strip().partition(" ")
            getattr(terminal, word)(rest)
finally:
    terminal.child.kill()
