#!/usr/bin/env python3
"""Tests of the game-playing tools: chess rules, clocks, scores and child processes.

Can be run directly. If Stockfish is installed legal moves are compared with it in random games.
"""

import contextlib
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tools"))
sys.dont_write_bytecode = True

from playing.clock import Clock, TimeControl, parse_time_control  # noqa: E402
from playing.engines import UciEngine, XboardEngine  # noqa: E402
from playing.game import Game  # noqa: E402
from playing.openings import Opening, begin, read_openings  # noqa: E402
from playing.process import SEARCH_PATH, CannotStart, Child, Ended, Silence, find_command  # noqa: E402
from playing.rules import START, Position, coordinates  # noqa: E402
from playing.runner import play_game  # noqa: E402
from playing.score import Score, elo  # noqa: E402

# Published perft counts, covering every kind of move.
COUNTS = [
    ("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 3, 8902),
    ("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1", 2, 2039),
    ("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1", 4, 43238),
    ("r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 3, 9467),
    ("r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ - 0 1", 3, 9467),
    ("rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8", 3, 62379),
]


def count(position, depth):
    moves = position.legal_moves()
    return len(moves) if depth == 1 else sum(count(position.after(move), depth - 1) for move in moves)


def played(*texts, fen=None):
    """A game after these legal moves in coordinates."""
    game = Game(fen) if fen else Game()
    for text in " ".join(texts).split():
        assert game.follow(text), text
    return game


class Rules(unittest.TestCase):
    def test_perft(self):
        for fen, depth, moves in COUNTS:
            self.assertEqual(count(Position(fen), depth), moves, fen)

    @unittest.skipUnless(shutil.which("stockfish", path=SEARCH_PATH), "Stockfish isn't installed")
    def test_legal_moves_in_random_games(self):
        chance = random.Random(1)
        with contextlib.ExitStack() as stack:
            folder = stack.enter_context(tempfile.TemporaryDirectory())
            judge = stack.enter_context(Child(find_command("stockfish"), folder))
            for _ in range(12):
                game = Game()
                while game.end() is None and len(game.moves) < 150:
                    judge.send(game.uci_position(), "d", "go perft 1")
                    lines = judge.read_until("Nodes searched")
                    legal = sorted(line.split(":")[0] for line in lines if re.fullmatch(r"\w{4,5}: 1", line))
                    moves = game.position.legal_moves()
                    self.assertEqual(sorted(map(coordinates, moves)), legal, game.uci_position())
                    checkers = next(line for line in lines if line.startswith("Checkers:"))
                    self.assertEqual(game.position.in_check(), len(checkers.split()) > 1)
                    game.play(chance.choice(moves))

    def test_san_is_unique(self):
        chance = random.Random(2)
        for _ in range(6):
            game = Game()
            while game.end() is None and len(game.moves) < 80:
                position = game.position
                moves = position.legal_moves()
                names = [position.san(move) for move in moves]
                self.assertEqual(len(set(names)), len(moves), position.fen())
                self.assertEqual([position.parse_san(name) for name in names], moves)
                self.assertEqual(Position(position.fen()).fen(), position.fen())
                game.play(chance.choice(moves))
        for fen, move, name in [("k7/8/8/8/8/8/8/KN3N2 w - -", "b1d2", "Nbd2"),
                                ("k7/8/8/8/N7/8/N7/K7 w - -", "a2c3", "N2c3"),
                                ("6k1/8/8/8/4Q2Q/8/K7/7Q w - -", "h4e1", "Qh4e1"),
                                ("5k2/P7/5K2/8/8/8/8/8 w - -", "a7a8q", "a8=Q#")]:
            position = Position(fen)
            self.assertEqual(position.san(position.parse_coordinates(move)), name)

    def test_refuses_invalid_positions(self):
        for fen in ["", "8/8/8/8/8/8/8/8 w - - 0 1", "k7/8/8/8/8/8/8/KP w - -", "k7/8/8/8/8/8/8/7K x - - 0 1",
                    "kR6/8/8/8/8/8/8/7K w - - 0 1", "k7/8/8/8/8/8/8/7K w K - 0 1", "k7/8/8/8/8/8/8/7K w - e6 0 1",
                    "k6P/8/8/8/8/8/8/7K w - - 0 1", "k7/8/8/8/8/8/8/7K w - - x 1"]:
            with self.assertRaises(ValueError, msg=fen):
                Position(fen)


class Ends(unittest.TestCase):
    def test_results(self):
        shuffle = "g1f3 g8f6 f3g1 f6g8 "
        cases = [
            (played("f2f3 e7e5 g2g4 d8h4"), ("0-1", "Black mates")),
            (played(shuffle * 2), ("1/2-1/2", "repetition")),
            (played(shuffle, "g1f3 g8f6 f3g1"), None),
            (played("a1a2", fen="7k/8/8/8/8/8/8/R6K w - - 99 80"), ("1/2-1/2", "fifty moves")),
            (played("a1a8", fen="7k/6pp/8/8/8/8/8/R6K w - - 99 80"), ("1-0", "White mates")),
            (played(fen="7k/5Q2/8/8/8/8/8/7K b - - 0 1"), ("1/2-1/2", "stalemate")),
            (played(fen="7k/8/8/8/8/8/8/6NK b - - 0 1"), ("1/2-1/2", "insufficient material")),
            (played(fen="5b1k/8/8/8/8/8/8/2B4K b - - 0 1"), ("1/2-1/2", "insufficient material")),
            (played(fen="6nk/8/8/8/8/8/8/6NK b - - 0 1"), ("1/2-1/2", "insufficient material")),
            (played(fen="7k/8/8/8/8/4B3/8/2B4K b - - 0 1"), ("1/2-1/2", "insufficient material")),
            (played(fen="7k/8/8/8/8/5B2/8/2B4K b - - 0 1"), None),
            (played(fen="7k/8/8/8/8/5N2/8/2B4K b - - 0 1"), None),
            (played(fen="7k/7p/8/8/8/8/8/7K b - - 0 1"), None),
        ]
        for game, end in cases:
            self.assertEqual(game.end(), end, game.uci_position())

    def test_repetition_depends_on_rights(self):
        # At first black can capture en passant, or can't because of a pin.
        round_trip = "a8b8 a1b1 b8a8 b1a1 "
        for fen, rook, end in [("r6k/8/8/8/4p3/8/3P4/R6K w - - 0 1", "d2d4", None),
                               ("r6k/8/8/8/5p2/8/3P4/R6K w - - 0 1", "d2d4", ("1/2-1/2", "repetition"))]:
            self.assertEqual(played(rook, round_trip * 2, fen=fen).end(), end, fen)


class Clocks(unittest.TestCase):
    def test_time_controls(self):
        cases = [("5+0.05", 5, 0.05, 0), ("40/60", 60, 0, 40), ("40/0:30", 30, 0, 40), ("1:30+1", 90, 1, 0),
                 ("0.5", 0.5, 0, 0), ("10/2+0.1", 2, 0.1, 10)]
        for text, base, increment, moves in cases:
            control = parse_time_control(text)
            self.assertEqual((control.base, control.increment, control.moves), (base, increment, moves), text)
        for text in ["", "0", "0+1", "0/5", "5+", "-1", "5+0.1+0.1", "1:2:3", "x", "5 ", "9999999"]:
            self.assertIsNone(parse_time_control(text), text)

    def test_flag_and_increment(self):
        clock = Clock(TimeControl(2, 0.5), margin=0.1)
        self.assertTrue(clock.charge(1.5))
        self.assertAlmostEqual(clock.left, 1.0)  # the increment is added after the move
        self.assertTrue(clock.charge(1.05))
        self.assertAlmostEqual(clock.left, 0.5)  # the margin isn't charged
        self.assertFalse(clock.charge(0.65))

    def test_moves_per_control(self):
        clock = Clock(TimeControl(10, 0, 2))
        self.assertEqual([(clock.charge(4), clock.moves_to_go, clock.left) for _ in range(3)],
                         [(True, 1, 6), (True, 2, 12), (True, 1, 8)])


class Scores(unittest.TestCase):
    def test_elo_and_points(self):
        self.assertAlmostEqual(elo(0.5), 0)
        self.assertAlmostEqual(elo(10 / 11), 400)
        score = Score()
        for result, white in [("1-0", True), ("0-1", False), ("1-0", False), ("1/2-1/2", True)]:
            score.add(result, white)
        self.assertEqual((score.won, score.lost, score.drawn, score.points()), (2, 1, 1, 2.5))
        self.assertEqual(elo(0), -elo(1))

    def test_margin_of_100_even_games(self):
        score = Score()
        score.won = score.lost = 50
        self.assertAlmostEqual(score.margin(), 0.098)


# An engine of either protocol that plays the given moves or misbehaves.
ENGINE = '''
import sys, time
moves = iter(sys.argv[2:])
protocol = sys.argv[1]
def say(*lines):
    for line in lines: print(line, flush=True)
for line in sys.stdin:
    word = line.split()[0]
    if word == "uci": say("id name Script", "option name Hash type spin default 16 min 1 max 64", "uciok")
    if word == "isready": say("readyok")
    if word == "protover": say('feature myname="Script" ping=1 setboard=1 done=1')
    if word == "ping": say(line.strip().replace("ping", "pong"))
    if word == "quit": break
    if word == "go" or word == "ponderhit" or protocol == "xboard" and line[1:2].isdigit():
        if "ponder" in line.split(): continue
        move = next(moves)
        if move == "crash": sys.exit(3)
        if move == "late": time.sleep(0.4); move = "a7a6"
        say(("bestmove " if protocol == "uci" else "move ") + move if move != "resign" else move)
'''


class Games(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        (self.folder / "engine.py").write_text(ENGINE)

    def play(self, kind, moves):
        """The outcome of a game in which black plays these moves and white shuffles."""
        engines = {}
        for white, protocol, own in [(True, UciEngine, "g1f3 f3g1 " * 9), (False, kind, moves)]:
            folder = self.folder / ("white" if white else "black")
            folder.mkdir(exist_ok=True)
            name = "uci" if protocol is UciEngine else "xboard"
            engines[white] = protocol([sys.executable, self.folder / "engine.py", name, *own.split()], folder)
            self.addCleanup(engines[white].kill)
        outcome = play_game(engines, Opening(START, ["a2a3"]), TimeControl(0.3, 0.05), 0, False)
        for engine in engines.values():
            engine.kill()
        return outcome

    def test_ends(self):
        for kind in (UciEngine, XboardEngine):
            for moves, result, reason, broken in [
                    ("g8f6 f6g8 " * 4, "1/2-1/2", "repetition", False), ("g8f6 g8f6", "1-0", "illegal move", False),
                    ("g8f6 late", "1-0", "loss on time", False), ("crash", "1-0", "ended with status 3", True)]:
                outcome = self.play(kind, moves)
                self.assertEqual((outcome.result, outcome.broken), (result, broken), (kind, moves, outcome.reason))
                self.assertIn(reason, outcome.reason)
        self.assertIn("resigns", self.play(XboardEngine, "g8f6 resign").reason)

    def test_shipped_openings(self):
        openings = read_openings(ROOT / "data/openings.txt")
        self.assertEqual(len({begin(opening).position.key() for opening in openings}), 40)
        for text in ["e4 e4", "k7/8/8/8/8/8/8/7K w - - 0 1", "", "e4 e5 \0"]:
            (self.folder / "bad").write_text(text)
            with self.assertRaises(CannotStart, msg=text):
                read_openings(self.folder / "bad")


def is_alive(process):
    try:
        return (pathlib.Path("/proc") / str(process) / "stat").read_text().rsplit(")")[1].split()[0] != "Z"
    except OSError:
        return False


def ends(process, patience=10):
    """Whether the process disappears within the time."""
    deadline = time.monotonic() + patience
    while is_alive(process) and time.monotonic() < deadline:
        time.sleep(0.01)
    return not is_alive(process)


class Processes(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def child(self, script):
        child = Child(["/bin/sh", "-c", script], self.folder)
        self.addCleanup(child.kill)
        return child

    def test_silence_and_ends(self):
        with self.assertRaises(Silence):
            self.child("sleep 60").read(0.1)
        with self.assertRaisesRegex(Ended, "SIGSEGV"):
            self.child("kill -SEGV $$").read(5)
        with self.assertRaisesRegex(Ended, "status 5"):
            self.child("echo a; exit 5").read_until("b", 5)
        child = self.child("read line; echo trouble >&2; exit 1")
        self.assertEqual(child.end(5), ["ended with status 1", "on the error stream: trouble"])
        self.assertEqual(self.child("sleep 60").end(0.1), ["didn't end"])
        child.send("x")  # has ended: no effect
        with self.assertRaises(CannotStart):
            find_command("no-such-program")

    def test_send_times_out_if_nothing_is_read(self):
        child = self.child("sleep 60")
        import playing.process
        self.addCleanup(setattr, playing.process, "PATIENCE", playing.process.PATIENCE)
        playing.process.PATIENCE = 0.2
        with self.assertRaises(Silence):
            child.send("x" * 1000000)

    def test_the_group_ends_with_the_child(self):
        child = self.child("sleep 60 & echo $!; wait")
        grandchild = int(child.read(5))
        child.kill()
        self.assertTrue(ends(child.process.pid) and ends(grandchild))

    def test_nothing_outlives_the_tool(self):
        tool = """
import sys
sys.path.insert(0, %r)
from playing.process import Child
from playing.tool import run_tool
def main():
    child = Child(["sh", "-c", "echo up; exec sleep 60"], %r)
    child.read()
    print(child.process.pid, flush=True)
    %s
run_tool(main)
"""
        for deed, sign, status in [("sys.stdin.read()", signal.SIGINT, 130), ("sys.stdin.read()", signal.SIGTERM, 143),
                                   ("sys.stdin.read()", signal.SIGKILL, -9), ("1 / 0", None, 1),
                                   ("sys.exit(4)", None, 4)]:
            process = subprocess.Popen([sys.executable, "-c", tool % (str(ROOT / "tools"), str(self.folder), deed)],
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
            with process:
                child = int(process.stdout.readline())
                if sign:
                    os.kill(process.pid, sign)
                self.assertEqual(process.wait(10), status, deed)
            self.assertTrue(ends(child), (deed, sign))


if __name__ == "__main__":
    unittest.main()
