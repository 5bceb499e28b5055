"""Arguments, folders, jobs and the end of a command-line tool."""

import argparse
import contextlib
import math
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import threading

from playing.process import CannotStart, Fault, kill_all

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


class Interrupted(BaseException):
    """A signal that ends the tool."""


def interrupt(number, _):
    for sign in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(sign, signal.SIG_IGN)  # nothing disturbs the tidying up
    raise Interrupted(number)


def run_tool(main):
    """Runs the tool and ends it: no process is left behind, and what can't be done is said in one line."""
    name = pathlib.Path(sys.argv[0]).name
    status, said = 2, None
    try:
        for sign in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(sign, interrupt)
        status = main()
        sys.stdout.flush()
    except Interrupted as signal_number:
        status, said = 128 + signal_number.args[0], "broken off by " + signal.Signals(signal_number.args[0]).name
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
    except Fault as fault:
        said = str(fault)
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
    """Refuses arguments in one line."""

    def __init__(self, description):
        super().__init__(description=description, formatter_class=argparse.RawDescriptionHelpFormatter,
                         allow_abbrev=False)

    def error(self, message):
        self.exit(2, "%s: %s; see %s --help\n" % (self.prog, message, self.prog))


def whole(low, high):
    """A type of arguments: whole numbers within a range."""
    def number(text):
        try:
            value = int(text)
        except ValueError:
            value = None
        if value is None or not low <= value <= high:
            raise argparse.ArgumentTypeError("%s is no whole number from %d to %d" % (text, low, high))
        return value
    return number


def decimal(low, high):
    """A type of arguments: numbers within a range."""
    def number(text):
        try:
            value = float(text)
        except ValueError:
            value = math.nan
        if not low <= value <= high:
            raise argparse.ArgumentTypeError("%s is no number from %g to %g" % (text, low, high))
        return value
    return number


def option(text):
    """A type of arguments: NAME=VALUE."""
    name, equals, value = text.partition("=")
    if not name or not equals or not text.isprintable():
        raise argparse.ArgumentTypeError("%s is not written NAME=VALUE" % text)
    return name, value


def add_engine_options(parser):
    parser.add_argument("--engine", type=pathlib.Path, default=ROOT / "build/release",
                        help="the binary, or the folder that holds it")
    parser.add_argument("--data", type=pathlib.Path, default=ROOT / "data", help="folder of varn.ini and book.dat")
    parser.add_argument("--keep", type=pathlib.Path, help="keep what the run leaves behind in this folder")


# --- Varn and other programs ------------------------------------------------------------------------------------------


def find_engine(path, name):
    """The binary that was asked for, or the one of that name in the folder that was."""
    engine = path.resolve()
    engine = engine / name if engine.is_dir() else engine
    if not os.access(engine, os.X_OK) or not engine.is_file():
        raise CannotStart("there is no program %s" % engine)
    return engine


def set_up_engine(arguments, folder, book):
    """A folder for one Varn to run in, with the files that it reads there."""
    folder.mkdir()
    shutil.copy(find_engine(arguments.engine, "varn"), folder / "varn")
    shutil.copy(arguments.data / "varn.ini", folder)
    if book:
        shutil.copy(arguments.data / "book.dat", folder)


def demand(*packages):
    """Installs what is missing."""
    if subprocess.run([ROOT / "tools/install", *packages]).returncode != 0:
        raise CannotStart("packages are missing: one of " + ", ".join(packages))


# --- A run and what it leaves -----------------------------------------------------------------------------------------


@contextlib.contextmanager
def run_folder(keep):
    """The folder of the run. Where it isn't to be kept it is removed if the run is broken off; see conclude."""
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
    """Prints the faults, keeps the folder where there are any or it is wanted, and gives the status to end with."""
    for fault in faults:
        print("  " + fault)
    if faults or keep:
        print("  games and logs: " + str(folder))
    else:
        shutil.rmtree(folder)
    return 1 if faults else 0


def show_progress(text):
    """Writes one line anew, for whoever watches; an empty text makes room for other output."""
    if sys.stderr.isatty():
        sys.stderr.write("\r\033[K" + text)
        sys.stderr.flush()


class Run:
    """Hands out the games of a run to the jobs that play them, and gathers the faults."""

    def __init__(self, games):
        self.lock = threading.Lock()
        self.games, self.begun, self.stopped = games, 0, False
        self.faults = []

    def next_game(self):
        """Its number from 0, or nothing where there is none left."""
        with self.lock:
            if self.stopped or self.begun >= self.games:
                return None
            self.begun += 1
            return self.begun - 1

    def stop(self, *_):
        """No game begins any more."""
        self.stopped = True

    def play(self, work, jobs):
        """Calls work(job) for each job in a thread of its own. What one of them raises ends all."""
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
