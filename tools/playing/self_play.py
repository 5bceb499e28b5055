"""Self-play runs, for both protocols."""

import collections
import random
import time

from playing.game import Game
from playing.process import CannotStart, Fault
from playing.tool import Run, show_progress

FAULT_LIMIT = 50  # a run stops after so many faults


def random_opening(chance, fewest, most, end):
    """An unfinished game after some random moves."""
    while True:
        game = Game()
        for _ in range(chance.randint(fewest, most)):
            moves = game.position.legal_moves()
            if not moves:
                break
            game.play(chance.choice(moves))
        if end(game) is None:
            return game


class Pair:
    """Two engines that stay alive for all their games, so that memory growth shows.

    Subclasses define how an engine is started in a folder (start), its process (child), and how a game is played
    (play_game, which returns the result or raises a Fault, and keeps the game in `game`).
    """

    def __init__(self, arguments, folder):
        folder.mkdir()
        self.arguments, self.folder, self.broken, self.game = arguments, folder, False, Game()
        self.counts, self.maxima = collections.Counter(), collections.Counter()  # for the report
        self.think_seconds, self.first_resident, self.last_resident = 0, None, None
        self.players = [self.start(folder / name) for name in ("first", "second")]

    def note_move(self, seconds):
        self.counts["moves"] += 1
        self.think_seconds += seconds
        self.maxima["ms for one move"] = max(self.maxima["ms for one move"], 1000 * seconds)

    def play(self, number):
        """Plays a game; returns (result, None) or (None, fault). Dialogues are kept after a fault."""
        try:
            result, fault = self.play_game(number, random.Random("%d %d" % (self.arguments.seed, number))), None
        except CannotStart:
            raise
        except Fault as what:
            self.broken = True
            result, fault = None, "game %d (%s): %s" % (number, self.folder.name, what)
            for player in self.players:
                child = self.child(player)
                child.keep_dialogue(self.folder / ("game%d-%s" % (number, child.folder.name)))
        with open(self.folder / "games", "a") as games:
            print(number, result or fault, self.game.first.fen(), *self.game.moves, sep="\t", file=games)
        if not self.broken:
            self.last_resident = [self.child(player).resident() for player in self.players]
            self.first_resident = self.first_resident or self.last_resident
        return result, fault

    def end(self):
        return ["%s engine of %s %s" % (self.child(player).folder.name, self.folder.name, fault)
                for player in self.players for fault in self.child(player).end()]


class SelfPlay:
    """A run: concurrent pairs and their results."""

    def __init__(self, kind, arguments, folder):
        self.kind, self.arguments, self.folder = kind, arguments, folder
        self.run, self.results, self.pairs, self.begun = Run(arguments.games), collections.Counter(), [], 0

    def play_share(self, job):
        """Plays games until none are left. A faulty pair is replaced."""
        pair = None
        while (number := self.run.next_game()) is not None:
            pair = pair or self.begin_pair()
            self.note_game(*pair.play(number))
            if pair.broken:
                self.note_faults(pair.end())
                pair = None
        if pair:
            self.note_faults(pair.end())

    def begin_pair(self):
        with self.run.lock:
            self.begun += 1
            name = "pair%d" % self.begun
        pair = self.kind(self.arguments, self.folder / name)
        with self.run.lock:
            self.pairs.append(pair)
        return pair

    def note_game(self, result, fault):
        with self.run.lock:
            self.results[result or "fault"] += 1
        self.note_faults([fault] if fault else [])

    def note_faults(self, faults):
        with self.run.lock:
            self.run.faults += faults
            if len(self.run.faults) >= FAULT_LIMIT:
                self.run.stop()
            show_progress("%d of %d games, %d faults " % (self.results.total(), self.run.games, len(self.run.faults)))

    def play(self):
        """Plays all games, prints the report and returns the faults."""
        started = time.monotonic()
        self.run.play(self.play_share, self.arguments.jobs)
        show_progress("")
        self.report(time.monotonic() - started)
        return self.run.faults

    def report(self, seconds):
        counts, maxima = collections.Counter(), collections.Counter()
        for pair in self.pairs:
            counts.update(pair.counts)
            maxima |= pair.maxima
        mean = 1000 * sum(pair.think_seconds for pair in self.pairs) / max(1, counts["moves"])
        print("%d games, %d faults, %.0f ms a move  (%d s)" % (
            self.results.total(), len(self.run.faults), mean, seconds))
        print("  " + ", ".join("%d %s" % (count, name) for name, count in counts.items()))
        print("  at most: " + ", ".join("%.0f %s" % (most, name) for name, most in maxima.items()))
        for result, count in self.results.most_common():
            print("  %5d  %s" % (count, result))
        for pair in sorted(self.pairs, key=lambda pair: pair.folder.name):
            if pair.first_resident:
                print("  %s: %.1f and %.1f MB resident after its first game, %.1f and %.1f at the end" % (
                    pair.folder.name, *pair.first_resident, *pair.last_resident))
        print("  seed %d" % self.arguments.seed)
