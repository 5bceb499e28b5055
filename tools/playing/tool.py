"""Arguments, folders, jobs and exit status of command-line tools."""

import argparse
import contextlib
import math
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading

from playing.process import CannotStart, Fault, kill_all

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
DEFAULT_BUILD = ROOT / "build/release"


class Interrupted(BaseException):
    """A signal that ends the tool."""


def interrupt(number, _):
    for sign in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(sign, signal.SIG_IGN)  # no interruption while cleaning up
    raise Interrupted(number)


def run_tool(main):
    """Runs the tool and exits. No process is left behind, and errors are reported in one line."""
    name = pathlib.Path(sys.argv[0]).name
    status, said = 2, None
    try:
        for sign in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(sign, interrupt)
        status = main()
        sys.stdout.flush()
    except Interrupted as signal_number:
        status, said = 128 + signal_number.args[0], "interrupted by " + signal.Signals(signal_number.args[0]).name
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
    except Fault as fault:
        said = str(fault)
    except subprocess.CalledProcessError as error:
        said = "%s ended with status %d" % (error.cmd[0], error.returncode)
    except OSError as error:
        said = "%s%s" % (error.filename + ": " if error.filename else "", error.strerror or error)
    finally:
        kill_all()
    if said:
        show_progress("")
        with contextlib.suppress(OSError):
            print("%s: %s" % (name, said), file=sys.stderr)
    sys.exit(status)


# --- Arguments --------------------------------------------------------------------------------------------------------


class Parser(argparse.ArgumentParser):
    """Reports wrong arguments in one line."""

    def __init__(self, description):
        super().__init__(description=description, formatter_class=argparse.RawDescriptionHelpFormatter,
                         allow_abbrev=False)

    def error(self, message):
        self.exit(2, "%s: %s; see %s --help\n" % (self.prog, message, self.prog))


def whole(low, high):
    """Argument type: integers within a range."""
    def number(text):
        try:
            value = int(text)
        except ValueError:
            value = None
        if value is None or not low <= value <= high:
            raise argparse.ArgumentTypeError("%s is not an integer from %d to %d" % (text, low, high))
        return value
    return number


def decimal(low, high):
    """Argument type: numbers within a range."""
    def number(text):
        try:
            value = float(text)
        except ValueError:
            value = math.nan
        if not low <= value <= high:
            raise argparse.ArgumentTypeError("%s is not a number from %g to %g" % (text, low, high))
        return value
    return number


def regular_expression(text):
    """Argument type."""
    try:
        return re.compile(text)
    except re.error as error:
        raise argparse.ArgumentTypeError("%s is not a regular expression: %s" % (text, error)) from None


def option(text):
    """Argument type: NAME=VALUE."""
    name, equals, value = text.partition("=")
    if not name or not equals or not text.isprintable():
        raise argparse.ArgumentTypeError("%s is not of the form NAME=VALUE" % text)
    return name, value


def add_engine_options(parser):
    parser.add_argument("--engine", type=pathlib.Path, default=DEFAULT_BUILD,
                        help="the binary, or its folder")
    parser.add_argument("--data", type=pathlib.Path, default=ROOT / "data", help="folder with varn.ini and book.dat")
    parser.add_argument("--keep", type=pathlib.Path, help="keep games and logs in this folder")


# --- Varn and other programs ------------------------------------------------------------------------------------------


def find_engine(path, name):
    """The given binary, or the one of that name in the given folder."""
    engine = path.resolve()
    if engine == DEFAULT_BUILD and not engine.is_dir():
        raise CannotStart("Varn isn't built; cmake --preset release && cmake --build --preset release builds it")
    engine = engine / name if engine.is_dir() else engine
    if not os.access(engine, os.X_OK) or not engine.is_file():
        raise CannotStart("no such program: %s" % engine)
    return engine


def set_up_engine(arguments, folder, book):
    """Creates a working directory for Varn with the files that it needs."""
    folder.mkdir()
    shutil.copy(find_engine(arguments.engine, "varn"), folder / "varn")
    shutil.copy(arguments.data / "varn.ini", folder)
    if book:
        shutil.copy(arguments.data / "book.dat", folder)


def demand(*packages):
    """Installs missing packages."""
    if subprocess.run([ROOT / "tools/install", *packages]).returncode != 0:
        raise CannotStart("missing packages, among " + ", ".join(packages))


# --- A run and what it leaves -----------------------------------------------------------------------------------------


@contextlib.contextmanager
def run_folder(keep):
    """The folder of the run; unless kept it is removed if the run is interrupted. See conclude."""
    if keep:
        folder = keep.resolve()
        folder.mkdir(parents=True, exist_ok=True)
        if any(folder.iterdir()):
            raise CannotStart("the folder %s isn't empty" % keep)
    else:
        folder = pathlib.Path(tempfile.mkdtemp(prefix="varn-games-"))
    try:
        yield folder
    except BaseException:
        kill_all()
        if not keep:
            shutil.rmtree(folder, ignore_errors=True)
        raise


def conclude(keep, folder, faults):
    """Prints the faults, removes the folder unless there are any or it is to be kept, and returns the exit status."""
    for fault in faults:
        print("  " + fault)
    if faults or keep:
        print("  games and logs: " + str(folder))
    else:
        shutil.rmtree(folder)
    return 1 if faults else 0


def show_progress(text):
    """Rewrites the progress line on a terminal; an empty text erases it."""
    if sys.stderr.isatty():
        sys.stderr.write("\r\033[K" + text)
        sys.stderr.flush()


class Run:
    """Distributes the games of a run among jobs and collects the faults."""

    def __init__(self, games):
        self.lock = threading.Lock()
        self.games, self.begun, self.stopped = games, 0, False
        self.faults = []

    def next_game(self):
        """The number of the next game, from 0, or None if there are no more."""
        with self.lock:
            if self.stopped or self.begun >= self.games:
                return None
            self.begun += 1
            return self.begun - 1

    def stop(self, *_):
        """Starts no more games."""
        self.stopped = True

    def play(self, work, jobs):
        """Calls work(job) for each job in its own thread. An exception in one of them ends all."""
        raised = []

        def guarded(job):
            try:
                work(job)
            except BaseException as what:  # raised again in the main thread
                raised.append(what)

        threads = [threading.Thread(target=guarded, args=[job], daemon=True) for job in range(jobs)]
        try:
            for thread in threads:
                thread.start()
            while any(thread.is_alive() for thread in threads) and not raised:
                for thread in threads:
                    thread.join(0.1)
            if raised:
                raise raised[0]
        except BaseException:
            self.stop()
            kill_all()
            for thread in threads:
                thread.join(10)
            raise
