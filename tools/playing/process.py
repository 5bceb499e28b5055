"""Child processes driven line by line, which never outlive the tool.

Every program runs in its own process group, which is killed with its `Child`, at the exit of the tool, and by
`kill_all`. If the tool itself is killed the kernel kills the program (setpriv --pdeathsig).
"""

import atexit
import collections
import contextlib
import os
import pathlib
import queue
import re
import select
import shlex
import shutil
import signal
import subprocess
import threading
import time

PATIENCE = 120  # seconds for an answer, also with sanitizers on a busy machine
LINE_LIMIT = 1 << 20
DIALOGUE_LINES = 20000  # kept for each program
SEARCH_PATH = os.environ.get("PATH", os.defpath) + ":/usr/games"  # where Debian puts chess engines

Line = collections.namedtuple("Line", "text at")  # at: time.monotonic() when it was read

running = set()
running_lock = threading.RLock()
closing = threading.Event()  # set: no process may be started any more


class Fault(Exception):
    """Wrong or missing behaviour of a program."""


class Silence(Fault):
    """No line before the timeout."""


class Ended(Fault):
    """The program has ended, or closed its output."""


class CannotStart(Fault):
    """The program doesn't exist or doesn't start."""


def find_command(command):
    """The words of a command, the program as an absolute path."""
    try:
        words = shlex.split(command)
    except ValueError:
        raise CannotStart("unbalanced quotes in the command " + command) from None
    program = shutil.which(words[0], path=SEARCH_PATH) if words else None
    if program is None:
        raise CannotStart("no such program: %s" % (words[0] if words else "(empty command)"))
    return [os.path.abspath(program), *words[1:]]


def start_program(command, **how):
    """Starts a program that the kernel kills if the starting thread dies. If it can't be executed it ends at once with
    status 126 or 127."""
    environment = dict(os.environ, PATH=SEARCH_PATH, **how.pop("environment", {}))
    return subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *command], env=environment, **how)


def describe_status(status):
    if status >= 0:
        return "ended with status %d" % status
    try:
        return "was ended by " + signal.Signals(-status).name
    except ValueError:
        return "was ended by signal %d" % -status


class Child:
    """A child process driven line by line. Its standard error goes to the file `errors` in its folder."""

    def __init__(self, command, folder):
        self.folder = pathlib.Path(folder)
        self.lines, self.dialogue = queue.SimpleQueue(), collections.deque(maxlen=DIALOGUE_LINES)
        self.sending = threading.Lock()  # another thread may kill the program
        self.started, self.status, self.output_ended = time.monotonic(), None, False
        with open(self.folder / "errors", "wb") as errors, running_lock:
            if closing.is_set():
                raise Ended("the tool is shutting down")
            self.process = start_program(command, cwd=self.folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=errors, process_group=0, bufsize=0)
            running.add(self)
        os.set_blocking(self.process.stdin.fileno(), False)
        self.reader = threading.Thread(target=self._read_lines, daemon=True)
        self.reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.kill()

    # --- The dialogue -------------------------------------------------------------------------------------------------

    def _read_lines(self):
        """Reads continuously, so that time stamps are exact and the program never blocks on output."""
        unread = b""
        with self.process.stdout as output:
            while more := os.read(output.fileno(), 1 << 16):
                at = time.monotonic()
                *whole, unread = (unread + more).split(b"\n")
                for line in whole:
                    self.lines.put(Line(line.decode(errors="replace").rstrip("\r"), at))
                if len(unread) > LINE_LIMIT:
                    break
        self.lines.put(None)

    def _note(self, direction, text, at):
        self.dialogue.append("%10.3f %s %s" % (at - self.started, direction, text))

    def send(self, *lines):
        """Sends lines. If the program has ended nothing happens: the next read reports it."""
        for line in lines:
            self._note(">", line, time.monotonic())
        unsent = ("\n".join(lines) + "\n").encode()
        with self.sending, contextlib.suppress(BrokenPipeError):
            while unsent and not self.process.stdin.closed:
                _, ready, _ = select.select([], [self.process.stdin], [], PATIENCE)
                if not ready:
                    raise Silence("read no line for %d s" % PATIENCE)
                unsent = unsent[os.write(self.process.stdin.fileno(), unsent):]

    def read_before(self, deadline):
        """The next line with its time, or None at the deadline."""
        try:
            line = None if self.output_ended else self.lines.get(timeout=max(0, deadline - time.monotonic()))
        except queue.Empty:
            return None
        if line is None:
            self.output_ended = True
            raise Ended(describe_status(self.status) if self.has_ended(1) else "closed its output")
        self._note("<", *line)
        return line

    def read(self, patience=PATIENCE):
        line = self.read_before(time.monotonic() + patience)
        if line is None:
            raise Silence("no answer within %g s" % patience)
        return line.text

    def read_until(self, pattern, patience=PATIENCE):
        """All lines up to and including the first whose beginning matches."""
        deadline = time.monotonic() + patience
        lines = []
        while not lines or not re.match(pattern, lines[-1]):
            line = self.read_before(deadline)
            if line is None:
                raise Silence("no answer within %g s" % patience)
            lines.append(line.text)
        return lines

    def drop_lines(self):
        """Discards the output so far."""
        with contextlib.suppress(Ended):
            while self.read_before(0):
                pass

    def keep_dialogue(self, file):
        with open(file, "w") as kept:
            kept.writelines(line + "\n" for line in self.dialogue)

    def last_words(self):
        """The first line of standard error, or else the last line read, or an empty text."""
        errors = (self.folder / "errors").read_text(errors="replace").strip()
        heard = [line for line in self.dialogue if " < " in line[:14]]
        return errors.split("\n")[0] or (heard[-1].partition(" < ")[2] if heard else "")

    # --- The end ------------------------------------------------------------------------------------------------------

    def has_ended(self, patience=0):
        """Waits without reaping the process, so that its id isn't reused before its group is killed."""
        deadline = time.monotonic() + patience
        while self.status is None:
            try:
                ended = os.waitid(os.P_PID, self.process.pid, os.WEXITED | os.WNOHANG | os.WNOWAIT)
            except ChildProcessError:  # killed by another thread
                self.status = -signal.SIGKILL
                break
            if ended is not None:
                self.status = ended.si_status if ended.si_code == os.CLD_EXITED else -ended.si_status
            elif time.monotonic() >= deadline:
                return False
            else:
                time.sleep(0.005)
        return True

    def kill(self):
        """Kills the program and its process group, unless that was done before."""
        with running_lock:
            if self not in running:
                return
            running.remove(self)
            with contextlib.suppress(ProcessLookupError):
                os.killpg(self.process.pid, signal.SIGKILL)
            self.process.wait()
        with self.sending:
            self.process.stdin.close()

    def end(self, patience=PATIENCE):
        """Sends quit and waits; returns faults in the way the program ended."""
        faults = []
        with contextlib.suppress(Silence):
            self.send("quit")
        if not self.has_ended(patience):
            faults.append("didn't end")
        elif self.status != 0:
            faults.append(describe_status(self.status))
        self.kill()
        errors = (self.folder / "errors").read_text(errors="replace").strip("\n")
        return faults + (["on the error stream: " + errors.split("\n")[0]] if errors else [])

    def resident(self):
        """In megabytes."""
        with open("/proc/%d/status" % self.process.pid) as status:
            resident = re.search(r"VmRSS:\s+(\d+) kB", status.read())
        if resident is None:
            raise Ended("has ended")
        return int(resident[1]) / 1024


def kill_all():
    closing.set()
    for child in list(running):
        child.kill()


atexit.register(kill_all)
