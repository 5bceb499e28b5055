#!/usr/bin/env python3
"""Checks that UCI self-play detects engine faults: a random mover has one fault at a time, and passes without one.

Can be run directly.
"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

ENGINE = """#!%s
import os, random, sys, time
sys.path.insert(0, %r)
sys.dont_write_bytecode = True
from playing.game import Game
from playing.rules import START, coordinates

fault = os.environ["FAULT"]
chance = random.Random(os.getpid())
lines, game, pending, searches = 1, Game(), None, 0

def say(text):
    sys.stdout.write(text + "\\n")
    sys.stdout.flush()

def is_due():
    return searches > 4 and fault

def answer(legal):
    if not legal:
        say("bestmove (none)")
        return
    chance.shuffle(legal)
    legal.sort(key=lambda move: game.position.board[move[1]] == ".")  # captures make games short
    for number, move in enumerate(legal[:lines], 1):
        after = game.position.after(move)
        line = coordinates(move)
        reply = next((move for square in range(64) for move in after.moves_from(square)), None)
        if reply:
            line += " " + coordinates(reply)
        if is_due() == "illegal line":
            line = coordinates(move) + " e4e5 a1a1"
        if is_due() == "same line":
            line = coordinates(legal[0])
        score = {"wild score": "cp 9999", "false mate": "mate 1"}.get(is_due(), "cp -3")
        told = number + (is_due() == "one line too many")
        say("info depth 1 multipv %%d score %%s nodes 1 time 1 pv %%s" %% (told, score, line))
        if number == 1:
            best = line.split()[:2]
    if is_due() == "illegal move":
        best[0] = "a1a1"
    if is_due() == "no move":
        best = ["(none)"]
    if is_due() == "other move" and len(legal) > 1:
        best[0] = coordinates(legal[1])
    if is_due() == "illegal ponder":
        best = best[:1] + ["a1a1"]
    if is_due() == "late":
        time.sleep(1)
    if is_due() == "crash":
        os.abort()
    if is_due() == "error stream":
        sys.stderr.write("trouble\\n")
    if is_due() == "silent":
        return
    # Late output is written together with bestmove, or it could arrive during the next search.
    too_late = {"twice": "\\nbestmove " + best[0], "late info": "\\ninfo depth 1"}.get(is_due(), "")
    say("bestmove " + " ponder ".join(best) + too_late)

for text in sys.stdin:
    words = text.split()
    word = words[0] if words else ""
    if word == "uci":
        say("id name Random")
        say("id author nobody")
        say("option name MultiPV type spin default 1 min 1 max 500")
        say("option name Ponder type check default false")
        say("uciok")
    elif word == "isready":
        if not (is_due() == "deaf" and pending is not None):
            say("readyok")
    elif word == "setoption" and words[2] == "MultiPV":
        lines = int(words[4])
    elif word == "position":
        game = Game(START if words[1] == "startpos" else " ".join(words[2:8]))
        for move in words[words.index("moves") + 1:] if "moves" in words else []:
            game.follow(move)
    elif word == "go":
        searches += 1
        legal = game.position.legal_moves()
        if "searchmoves" in words and fault != "searchmoves":
            legal = [move for move in legal if coordinates(move) in words]
        if ("infinite" in words or "ponder" in words) and is_due() != "early":
            pending = legal
        else:
            answer(legal)
    elif word in ("stop", "ponderhit") and pending is not None:
        legal, pending = pending, None
        answer(legal)
    elif word == "quit":
        break
if fault == "status":
    sys.exit(3)
"""

# Expected report of each fault.
FAULTS = {
    "illegal line": "an illegal move e4e5 in the line", "one line too many": "a line of number", "late": "in time",
    "same line": "two lines begin with the same move", "wild score": "a score out of range",
    "false mate": "mates are not what the lines show",
    "illegal move": "an illegal move: bestmove a1a1", "other move": "the best line began with",
    "illegal ponder": "an illegal move to ponder on", "crash": "SIGABRT", "error stream": "trouble",
    "silent": "no bestmove", "twice": "an unexpected line: bestmove", "late info": "an unexpected line: info",
    "deaf": "readyok", "searchmoves": "with an excluded move", "early": "bestmove too early",
    "no move": "an illegal move: bestmove (none)", "status": "ended with status 3",
}


class Faults(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.engine = self.folder / "engine"
        self.engine.write_text(ENGINE % (sys.executable, str(ROOT / "tools")))
        self.engine.chmod(0o755)

    def run_tool(self, fault):
        """Status and report of some games."""
        games, margin = ("2", "500") if fault else ("4", "5000")  # a busy machine may hold up a sound engine
        run = subprocess.run(
            [sys.executable, ROOT / "tools/self_play", "--protocol", "uci", "--engine", self.engine, "--ponder", "all",
             "--games", games, "--seed", "1", "--margin", margin, "--keep", self.folder / (fault or "sound")],
            env=dict(os.environ, FAULT=fault), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=300)
        return run.returncode, run.stdout

    def test_a_sound_engine_passes(self):
        status, said = self.run_tool("")
        self.assertEqual(status, 0, said)

    def test_each_fault_is_reported(self):
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            for (fault, report), (status, said) in zip(FAULTS.items(), pool.map(self.run_tool, FAULTS)):
                with self.subTest(fault):
                    self.assertEqual(status, 1, said)
                    self.assertIn(report, said)
                    kept = list((self.folder / fault).glob("pair*/game*-first"))
                    self.assertTrue(kept or fault in ("status", "error stream", "false mate"), said)


if __name__ == "__main__":
    unittest.main()
