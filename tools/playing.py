"""What the programs that play games of Varn share."""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
# How Varn and xboard announce the end of a game.
RESULT = re.compile(r"(1-0|0-1|1/2-1/2) \{.*\}")


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
