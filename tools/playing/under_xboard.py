"""Matches under xboard on a virtual display.

xboard is the referee and checks every move and claim; each game is also replayed by the engine.
"""

import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import time

from playing.process import CannotStart, Child, describe_status, find_command, start_program
from playing.tool import find_engine, set_up_engine, show_progress

# Result lines of Varn and xboard.
RESULT = re.compile(r"(1-0|0-1|1/2-1/2) \{.*\}")

# Command of each opponent, and features that xboard must know in advance: gnuchess delays its feature line, and
# interrupts before it would kill it.
OPPONENTS = {
    "fairymax": ("fairymax", ""),
    "gnuchess": ("gnuchess --xboard", "sigint=0 usermove=1 done=1"),
    "phalanx": ("phalanx", ""),
    "sjeng": ("sjeng", ""),
    "self": ("./start", ""),
}

# Wrapper that records the engine's exit status. xboard terminates and kills its engines after `quit`, so the waiting
# process must be unknown to xboard and hold no end of the pipes.
ENGINE_SCRIPT = """#!/usr/bin/env python3
import os, signal, subprocess
reader, writer = os.pipe()
if os.fork() == 0:
    os.setsid()
    engine = subprocess.Popen("./PROGRAM")
    os.write(writer, b"%d" % engine.pid)
    nothing = os.open("/dev/null", os.O_RDWR)
    os.dup2(nothing, 0)
    os.dup2(nothing, 1)
    with open("statuses", "a") as statuses:
        print(engine.wait(), file=statuses)
else:
    engine = int(os.read(reader, 20))
    signal.signal(signal.SIGINT, lambda *_: os.kill(engine, signal.SIGINT))
    signal.signal(signal.SIGTERM, signal.SIG_IGN)
    os.wait()
"""

# Faults of the loser in xboard's last comment on a game.
ENDS = [
    ("loss on time", re.compile(r"wins on time")),
    ("illegal move", re.compile(r"illegal move|invalid move|moved for the opponent", re.IGNORECASE)),
    ("false claim", re.compile(r"False .*claim")),
    ("engine ended", re.compile(r"exited unexpectedly")),
]


def clock_options(tc):
    """Time control options of xboard."""
    if "/" in tc:
        moves, base = tc.split("/")
        return ["-mps", moves, "-tc", base]
    base, increment = tc.split("+")
    return ["-tc", base, "-inc", increment]


def longest_move(tc):
    """Upper limit in seconds for a single move: base time and saved increments."""
    base, increment = re.sub(r"^\d+/", "", tc).partition("+")[::2]
    minutes, _, seconds = base.partition(":")
    return 2 * (60 * int(minutes) + int(seconds or 0)) + 10 * float(increment or 0)


# --- The surroundings ---------------------------------------------------------------------------------------------


def set_up_side(arguments, folder):
    """Creates a folder for Varn with a script that starts it and records its exit status."""
    set_up_engine(arguments, folder, book=not arguments.no_book)
    program = "varn"
    if arguments.polyglot:
        program = "varn-uci"
        shutil.copy(find_engine(arguments.engine, program), folder / program)
    script = folder / "start"
    script.write_text(ENGINE_SCRIPT.replace("PROGRAM", program))
    script.chmod(0o755)


@contextlib.contextmanager
def display():
    """A virtual display; yields its name."""
    reader, writer = os.pipe()
    command = ["Xvfb", "-displayfd", str(writer), "-screen", "0", "1024x768x24", "-nolisten", "tcp"]
    server = start_program(command, pass_fds=[writer], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, start_new_session=True)
    os.close(writer)
    try:
        with os.fdopen(reader) as number:
            name = number.readline().strip()
        if not name:
            raise CannotStart("Xvfb didn't start")
        yield ":" + name
    finally:
        server.terminate()
        server.wait()


def processes_in(folder):
    """Processes whose working directory is in the folder."""
    found = []
    for link in pathlib.Path("/proc").glob("[0-9]*/cwd"):
        with contextlib.suppress(OSError):
            if pathlib.Path(os.readlink(link)).is_relative_to(folder):
                found.append(int(link.parent.name))
    return found


def left_running(folder, patience):
    """Kills processes that still run in the folder after a while; returns their number."""
    deadline = time.monotonic() + patience
    while processes_in(folder) and time.monotonic() < deadline:
        time.sleep(0.1)
    left = processes_in(folder)
    for process in left:
        with contextlib.suppress(OSError):
            os.kill(process, signal.SIGKILL)
    return len(left)


def try_opponent(arguments, folder):
    """Checks that the opponent starts; xboard would wait for it forever."""
    command = OPPONENTS.get(arguments.opponent, (arguments.opponent, ""))[0]
    with Child(find_command(command), folder) as opponent:
        if opponent.has_ended(0.5):
            raise CannotStart("%s %s right after the start" % (command, describe_status(opponent.status)))


def xboard_command(arguments, folder):
    second, features = OPPONENTS.get(arguments.opponent, (arguments.opponent, ""))
    return ["xboard", "-ini", str(folder / "empty.ini"), "-saveSettingsOnExit", "false", "-soundProgram", "true",
            "-popupExitMessage", "false", "-popupMoveErrors", "false", "-animateMoving", "false",
            "-debug", "-debugfile", str(folder / "log"), "-saveGameFile", str(folder / "games.pgn"),
            "-matchGames", str(arguments.games), "-matchPause", "500",
            "-ponderNextMove", str(arguments.ponder).lower(), *clock_options(arguments.tc),
            # xboard verifies claims but makes none itself.
            "-autoCallFlag", "true", "-testClaims", "true", "-checkMates", "false", "-trivialDraws", "false",
            "-materialDraws", "false",
            *(["-fUCI"] if arguments.polyglot else []),
            "-fcp", "./start", "-fd", str(folder / "first"), "-firstPgnName", "Varn",
            "-scp", second, "-sd", str(folder / "second"), "-secondFeatures", features,
            "-secondPgnName", "Varn (2)" if arguments.opponent == "self" else arguments.opponent]


def watch(xboard, arguments, folder):
    """Waits for the end of the match; returns faults of xboard itself."""
    idle_limit = longest_move(arguments.tc) + 60
    log_size, changed = 0, time.monotonic()
    while xboard.poll() is None:
        time.sleep(0.2)
        size = (folder / "log").stat().st_size if (folder / "log").exists() else 0
        if size != log_size:
            log_size, changed = size, time.monotonic()
        games = read_games(folder / "games.pgn")
        show_progress("%d of %d games, %s " % (len(games), arguments.games, score_text(games)))
        if time.monotonic() - changed > idle_limit:
            return ["the match was stopped after %d s without progress" % idle_limit]
    return [] if xboard.returncode == 0 else ["xboard ended with status %d" % xboard.returncode]


def play(arguments, folder):
    """Runs the match; returns faults of xboard itself and processes left behind."""
    with display() as name, open(folder / "said", "wb") as said:
        xboard = start_program(xboard_command(arguments, folder), cwd=folder, stdin=subprocess.DEVNULL, stdout=said,
                               stderr=said, start_new_session=True,
                               environment={"HOME": str(folder), "LC_ALL": "C", "DISPLAY": name})
        patience = 0
        try:
            faults = watch(xboard, arguments, folder)
            patience = 15
        finally:
            xboard.kill()
            xboard.wait()
            left = left_running(folder / "first", patience) + left_running(folder / "second", min(patience, 1))
    return faults + (["%d processes were left running" % left] if left else [])


# --- Results ------------------------------------------------------------------------------------------------------


def read_games(pgn):
    """Finished games: tags, and the last comment, which gives the reason of the end."""
    games = []
    if not pgn.exists():
        return games
    for text in re.split(r"(?=^\[Event )", pgn.read_text(errors="replace"), flags=re.MULTILINE)[1:]:
        game = dict(re.findall(r'^\[(\w+) "(.*)"\]$', text, flags=re.MULTILINE))
        comments = re.findall(r"\{([^}]*)\}", text)
        game["end"] = " ".join(comments[-1].split()) if comments else ""
        if game.get("Result", "*") != "*" or "exit" not in game["end"]:
            games.append(game)
    return games


def score_text(games):
    points = {"+": 0, "-": 0, "=": 0, "?": 0}
    for game in games:
        white = game["White"] == "Varn"
        points[{"1-0": "+-"[not white], "0-1": "-+"[not white], "1/2-1/2": "="}.get(game["Result"], "?")] += 1
    unfinished = " ?%d" % points["?"] if points["?"] else ""
    return "+%d -%d =%d%s" % (points["+"], points["-"], points["="], unfinished)


def read_log(log):
    """The communication with each engine: (engine, direction, line)."""
    # For "usermove" xboard writes the word and the move separately, and logs both.
    pattern = re.compile(r"^\d+ ([<>])(first|second)\s*: (?:usermove \d+ >\2\s*: )?(.*)$")
    lines = log.read_text(errors="replace").splitlines() if log.exists() else []
    return [(match[2], match[1], match[3]) for match in map(pattern.match, lines) if match]


def games_in_log(lines):
    """The moves of each game as the first engine saw them."""
    games = []
    for engine, direction, line in lines:
        if engine != "first":
            continue
        move = re.fullmatch(r"(?:move )?([a-h][1-8][a-h][1-8][qrbn]?)", line)
        if direction == ">" and line == "new":
            games.append([])
        elif direction == ">" and line == "undo":
            del games[-1][-1:]  # the engine was still thinking when its time ran out
        elif games and move and (direction == ">") != line.startswith("move "):
            games[-1].append(move[1])
    return [game for game in games if game]


def replay(engine, moves):
    """The engine's output on a game replayed in force mode."""
    dialogue = "xboard\nnew\nforce\n" + "".join(move + "\n" for move in moves) + "quit\n"
    try:
        outcome = subprocess.run(["./varn"], input=dialogue.encode(), stdout=subprocess.PIPE, cwd=engine, timeout=60)
    except subprocess.TimeoutExpired:
        return "still running after a minute"
    return outcome.stdout.decode(errors="replace").replace("Varn> \n", "", 1).strip()


def faults_of_game(game, varn_names):
    """Faults of Varn in xboard's comment on the end of a game."""
    loser = {"1-0": game["Black"], "0-1": game["White"]}.get(game["Result"])
    if loser is None:
        return [] if game["Result"] == "1/2-1/2" else ["no result"]
    return [fault for fault, pattern in ENDS if pattern.search(game["end"]) and loser in varn_names]


def judge(arguments, folder, games):
    itself = arguments.opponent == "self"
    varn_names = ["Varn", "Varn (2)"] if itself else ["Varn"]
    lines = read_log(folder / "log")
    faults = []
    if len(games) != arguments.games:
        faults.append("%d games finished of %d" % (len(games), arguments.games))
    for number, game in enumerate(games, 1):
        faults += ["game %d: %s (%s)" % (number, fault, game["end"]) for fault in faults_of_game(game, varn_names)]
    for engine, direction, line in lines:
        if direction == "<" and line.startswith("Illegal Move: ") and (itself or engine == "first"):
            faults.append("%s refused a line: %s" % (engine, line))
    for number, moves in enumerate(games_in_log(lines), 1):
        said = replay(folder / "first", moves)
        if said and not RESULT.fullmatch(said):
            faults.append("game %d, replayed: %s" % (number, said))
    for engine in ["first", "second"] if itself else ["first"]:
        statuses = (folder / engine / "statuses").read_text().split() if (folder / engine / "statuses").exists() else []
        if not statuses or any(status != "0" for status in statuses):
            faults.append("%s engine ended with status %s" % (engine, " ".join(statuses) or "unknown"))
    return faults


def play_under_xboard(arguments, folder):
    """Plays the match, prints its summary and returns the faults."""
    (folder / "empty.ini").write_text("")
    set_up_side(arguments, folder / "first")
    if arguments.opponent == "self":
        set_up_side(arguments, folder / "second")
    else:
        (folder / "second").mkdir()
        try_opponent(arguments, folder / "second")
    started = time.monotonic()
    faults = play(arguments, folder)
    show_progress("")
    games = read_games(folder / "games.pgn")
    faults += judge(arguments, folder, games)
    print("%-8s %-10s ponder %-3s book %-3s  %3d games  %-14s  %d faults  (%d s)" % (
        arguments.opponent, arguments.tc, "on" if arguments.ponder else "off",
        "off" if arguments.no_book or arguments.polyglot else "on",
        len(games), score_text(games), len(faults), time.monotonic() - started))
    return faults
