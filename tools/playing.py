"""What the programs that play games of Varn share."""

import os
import pathlib
import re
import select
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
# How Varn and xboard announce the end of a game.
RESULT = re.compile(r"(1-0|0-1|1/2-1/2) \{.*\}")
PATIENCE = 120  # seconds for one answer, on a busy machine and under a sanitizer


class Fault(Exception):
    """A program that doesn't answer, or not as it should."""


class Child:
    """A program that is spoken to line by line."""

    def __init__(self, command, folder):
        self.errors = open(folder / "errors", "wb")
        environment = dict(os.environ, PATH=os.environ["PATH"] + ":/usr/games")
        self.process = subprocess.Popen(command, cwd=folder, env=environment, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=self.errors, process_group=0)
        self.folder, self.unread = folder, b""

    def send(self, *lines):
        try:
            os.write(self.process.stdin.fileno(), ("\n".join(lines) + "\n").encode())
        except BrokenPipeError:
            pass  # the end of the output tells

    def read(self):
        while b"\n" not in self.unread:
            ready, _, _ = select.select([self.process.stdout], [], [], PATIENCE)
            if not ready:
                self.process.kill()
                self.process.wait()
                raise Fault("no answer within %d s" % PATIENCE)
            more = os.read(self.process.stdout.fileno(), 1 << 16)
            if not more:
                raise Fault("ended with status %d" % self.process.wait())
            self.unread += more
        line, self.unread = self.unread.split(b"\n", 1)
        return line.decode(errors="replace")

    def read_until(self, pattern):
        """All lines up to the first that matches, which is the last one."""
        lines = [self.read()]
        while not re.match(pattern, lines[-1]):
            lines.append(self.read())
        return lines

    def end(self):
        """Gives what is to be said against the way in which the program ended."""
        faults = []
        self.send("quit")
        try:
            status = self.process.wait(PATIENCE)
            faults += ["ended with status %d" % status] if status != 0 else []
        except subprocess.TimeoutExpired:
            self.process.kill()
            faults.append("didn't end")
        for stream in [self.process.stdin, self.process.stdout, self.errors]:
            stream.close()
        errors = (self.folder / "errors").read_text(errors="replace").split("\n")
        return faults + (["on the error stream: " + errors[0]] if errors != [""] else [])

    def resident(self):
        """In megabytes."""
        with open("/proc/%d/status" % self.process.pid) as status:
            return int(re.search(r"VmRSS:\s+(\d+) kB", status.read())[1]) / 1024


def add_engine_options(parser):
    parser.add_argument("--engine", type=pathlib.Path, default=ROOT / "build/release",
                        help="the binary, or the folder that holds it")
    parser.add_argument("--data", type=pathlib.Path, default=ROOT / "data", help="folder of varn.ini and book.dat")
    parser.add_argument("--keep", type=pathlib.Path, help="keep what the run leaves behind in this folder")


def set_up_engine(arguments, folder, book):
    """A folder for one Varn to run in."""
    folder.mkdir()
    engine = arguments.engine.resolve()
    shutil.copy(engine / "varn" if engine.is_dir() else engine, folder / "varn")
    shutil.copy(arguments.data / "varn.ini", folder)
    if book:
        shutil.copy(arguments.data / "book.dat", folder)


def are_installed(*packages):
    return subprocess.run([ROOT / "tools/install", *packages]).returncode == 0


def make_folder(keep):
    folder = keep.resolve() if keep else pathlib.Path(tempfile.mkdtemp(prefix="varn-games-"))
    folder.mkdir(parents=True, exist_ok=True)
    return folder


def show_progress(text):
    """Writes one line anew, for whoever watches; an empty text makes room for other output."""
    if sys.stderr.isatty():
        sys.stderr.write("\r\033[K" + text)
        sys.stderr.flush()


def conclude(keep, folder, faults):
    """Prints the faults, keeps the folder where there are any or it is wanted, and gives the status to end with."""
    for fault in faults:
        print("  " + fault)
    if faults or keep:
        print("  games and logs: " + str(folder))
    else:
        shutil.rmtree(folder)
    return 1 if faults else 0
