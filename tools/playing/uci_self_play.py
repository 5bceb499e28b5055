"""UCI self-play: a client that uses the whole protocol at random and checks every answer.

Games have clocks, some of them very short. Most moves are searched on the clock; the others by time, depth, nodes,
mate, searchmoves or infinitely. Searches are stopped and pinged at random, and options are changed between them. In
some games both sides ponder, with hits and misses.
"""

import collections
import re
import time

from playing.clock import Clock, TimeControl
from playing.engines import go_by_clock
from playing.game import Game
from playing.process import PATIENCE, CannotStart, Child, Fault
from playing.self_play import Pair, random_opening
from playing.tool import find_engine
from playing.uci_lines import Mates, check_info, parse_bestmove

BASES = [0.03, 0.1, 0.3, 1]  # seconds
INCREMENTS = [0, 0, 0.01, 0.05]
CONTROLS = [0, 0, 0, 2, 20]  # moves
LONGEST = 0.3  # seconds until a search without a clock is stopped
# Options set between searches: values to choose from, clamped to the engine's ranges.
OPTIONS = {
    "Hash": [1, 2, 8, 32], "MultiPV": [1, 1, 1, 2, 3, 5, 40], "Threads": [1, 1, 1, 2], "Move Overhead": [0, 5, 10, 30],
    "OwnBook": ["false", "true"], "UCI_AnalyseMode": ["false", "true"], "Clear Hash": [None],
}


class Search:
    """A go command and its answers."""

    def __init__(self, game, go, only, multipv):
        self.position, self.go, self.only = game.position, go, only
        self.moves = [move for move in game.legal_moves() if not only or move in only]
        self.lines = min(multipv, len(self.moves))
        self.over = game.end() is not None
        self.infos, self.bestmove = [], None
        self.started = self.freed = None  # when it started, and when it was allowed to answer
        self.limit = None  # deadline of the answer


class Client:
    """One engine and the answers it owes by the protocol."""

    def __init__(self, arguments, folder, counts, maxima):
        folder.mkdir()
        self.margin, self.counts, self.maxima = arguments.margin / 1000, counts, maxima
        self.book = (arguments.data / "book.dat").resolve()
        engine = find_engine(arguments.engine, "varn-uci")
        self.child = Child([str(engine)], folder)
        self.search, self.pings, self.multipv, self.mates = None, [], 1, Mates()
        try:
            self.options = self.shake_hands()
        except Fault as fault:
            self.child.kill()
            raise CannotStart("%s doesn't start: %s" % (engine, fault)) from None

    def shake_hands(self):
        self.child.send("uci")
        lines = self.child.read_until("uciok$")
        for what in ("id name ", "id author "):
            if not any(line.startswith(what) for line in lines):
                raise Fault("no " + what)
        options = {}
        for line in lines:
            if match := re.fullmatch(r"option name (.+?) type (check|spin|combo|button|string)( .*)?", line):
                options[match[1]] = dict(re.findall(r"(default|min|max) (-?\d+)", match[3] or ""), type=match[2])
            elif line.startswith("option"):
                raise Fault("a malformed line: " + line)
        return options

    # --- Between searches -----------------------------------------------------------------------------------------

    def set_options(self, chance, share):
        """Sets a random share of the options."""
        for name, values in OPTIONS.items():
            if name in self.options and chance.random() < share:
                option = self.options[name]
                value = chance.choice(values)
                if option["type"] == "spin":
                    value = min(max(value, int(option["min"])), int(option["max"]))
                if name == "MultiPV":
                    self.multipv = value
                self.child.send("setoption name " + name + ("" if value is None else " value %s" % value))
        if "Book File" in self.options and self.book.exists() and chance.random() < share:
            self.child.send("setoption name Book File value %s" % self.book)

    def new_game(self, chance, ponder):
        self.set_options(chance, 0.4)
        if "Ponder" in self.options:
            self.child.send("setoption name Ponder value " + str(ponder).lower())
        if chance.random() < 0.1:
            self.child.send(chance.choice(["stop", "ponderhit", ""]))  # ignored without a search
        if chance.random() < 0.8:
            self.child.send("ucinewgame")
        self.settle()

    def settle(self):
        """Only readyok and info strings are allowed. Allocating or clearing a table may take a while."""
        self.child.send("isready")
        lines = self.child.read_until("readyok$")
        for line in lines[:-1]:
            if not line.startswith("info string "):
                raise Fault("an unexpected line: " + line)

    # --- A search -------------------------------------------------------------------------------------------------

    def begin(self, game, go, seconds, expected=(), only=()):
        """Starts a search, after the expected moves if given. Infinite and pondering searches have no time limit."""
        after = game.copy()
        for move in expected:
            after.follow(move)
        self.search = Search(after, go, only, self.multipv)
        self.search.started = time.monotonic()
        if not go.startswith(("go ponder", "go infinite")):
            self.free(seconds)
        self.child.send(game.uci_position(*expected), go)

    def free(self, seconds):
        """Allows the answer from now on and requires it within so many seconds."""
        now = time.monotonic()
        self.search.freed = self.search.freed or now
        self.search.limit = min(self.search.limit or now + PATIENCE, now + seconds + self.margin)

    def stop(self):
        self.counts["stops"] += 1
        self.free(0)
        self.child.send("stop")

    def ponderhit(self, seconds):
        self.free(seconds)
        self.child.send("ponderhit")

    def ping(self):
        self.counts["isready in searches"] += 1
        self.pings.append(time.monotonic())
        self.child.send("isready")

    def wait(self, events=()):
        """Waits for bestmove and triggers events, given as (seconds, action); returns the result of parse_bestmove and
        its time."""
        search, begun = self.search, time.monotonic()
        events = collections.deque(sorted(events, key=lambda event: event[0]))
        while search.bestmove is None or self.pings:
            if events and time.monotonic() >= begun + events[0][0]:
                action = events.popleft()[1]
                if search.bestmove is None:
                    action()
                continue
            limits = [begun + events[0][0]] if events else []
            limits += [self.pings[0] + self.margin] if self.pings else []
            limits += [search.limit] if search.bestmove is None and search.limit else []
            line = self.child.read_before(min(limits) if limits else begun + PATIENCE)
            if line is not None:
                self.hear(line)
            else:
                self.blame_silence()
        return self.judge()

    def blame_silence(self):
        now = time.monotonic()
        if self.pings and now >= self.pings[0] + self.margin:
            raise Fault("no readyok within %.0f ms in %s" % (1000 * self.margin, self.search.go))
        if self.search.bestmove is None and self.search.limit and now >= self.search.limit:
            taken = 1000 * (now - self.search.started)
            raise Fault("no bestmove in time after %.0f ms of %s" % (taken, self.search.go))

    def listen(self):
        """Processes pending output without waiting."""
        while (line := self.child.read_before(0)) is not None:
            self.hear(line)

    def hear(self, line):
        search = self.search
        if line.at < search.started:
            raise Fault("an unexpected line: " + line.text)
        if line.text == "readyok" and self.pings:
            latency = line.at - self.pings.pop(0)
            self.maxima["ms for readyok"] = max(self.maxima["ms for readyok"], 1000 * latency)
            if latency > self.margin:
                raise Fault("readyok after %.0f ms in %s" % (1000 * latency, search.go))
        elif line.text.startswith("info ") and search.bestmove is None:
            search.infos.append(line.text)
        elif line.text.startswith("bestmove") and search.bestmove is None:
            if search.freed is None or line.at < search.freed:
                raise Fault("bestmove too early in %s" % search.go)
            search.bestmove = line
        else:
            raise Fault("an unexpected line: " + line.text)

    def judge(self):
        """Checks a finished search."""
        search, self.search = self.search, None
        self.counts["infos"] += len(search.infos)
        over = search.bestmove.at - search.limit + self.margin
        self.maxima["ms over time"] = max(self.maxima["ms over time"], 1000 * over)
        if over > self.margin:
            raise Fault("bestmove too late by %.0f ms in %s" % (1000 * over, search.go))
        try:
            return parse_bestmove(search, check_info(search, self.mates)), search.bestmove.at
        except Fault as fault:
            raise Fault("%s in %s of %s" % (fault, search.go, search.position.fen())) from None


class UciPair(Pair):
    """Two clients, and the games that they play."""

    def start(self, folder):
        return Client(self.arguments, folder, self.counts, self.maxima)

    def child(self, client):
        return client.child

    def play_game(self, number, chance):
        self.chance, self.game = chance, random_opening(chance, 0, chance.choice([8, 16, 80]), Game.end)
        if chance.random() < 0.3:
            self.game = Game(self.game.position.fen())
        share = {"all": 1, "none": 0, "half": 0.5}[self.arguments.ponder]
        ponder = chance.random() < share
        control = TimeControl(chance.choice(BASES), chance.choice(INCREMENTS), chance.choice(CONTROLS))
        self.clocks = {white: Clock(control, self.arguments.margin / 1000) for white in (True, False)}
        for client in self.players:
            client.new_game(chance, ponder)
        first = chance.randrange(2)
        while (end := self.game.end()) is None:
            white = self.game.position.white
            self.ply(self.players[(first + white) % 2], white, ponder)
        for client in self.players:
            self.end_pondering(client)
            self.ask_when_over(client)
        return "%s %s" % end

    def ply(self, client, white, ponder):
        """Plays one move and starts pondering."""
        chance = self.chance
        (move, expected), taken, by_clock = self.answer(client, white)
        if not self.game.follow(move):
            raise Fault("an illegal move: " + move)
        self.note_move(taken)
        if by_clock and not self.clocks[white].charge(taken):
            raise Fault("lost on time")
        if chance.random() < 0.05:
            client.set_options(chance, 0.2)
            client.settle()
        if ponder and expected and self.game.end() is None:
            self.counts["ponders"] += 1
            go = go_by_clock(self.clocks, white).replace("go", "go ponder", 1)
            client.begin(self.game, go, None, [expected])
            client.expected = self.game.moves + [expected]
            if chance.random() < 0.2:
                client.ping()

    def answer(self, client, white):
        """The answer, the seconds it took, and whether the clock ran."""
        chance = self.chance
        if client.search is not None:
            client.listen()
            if client.expected == self.game.moves and chance.random() < 0.85:
                self.counts["hits"] += 1
                started = time.monotonic()
                client.ponderhit(self.clocks[white].left)
                found, at = client.wait(self.disturbances(client, 0.1))
                return found, at - started, True
            self.end_pondering(client)
        if chance.random() < 0.8:
            started = time.monotonic()
            client.begin(self.game, go_by_clock(self.clocks, white), self.clocks[white].left)
            found, at = client.wait(self.disturbances(client, 0.05))
            return found, at - started, True
        started = time.monotonic()
        found, at = self.search_otherwise(client, white)
        return found, at - started, False

    def disturbances(self, client, stops):
        """A stop with this probability, and sometimes isready, early in a search."""
        events = [(self.chance.uniform(0, 0.05), client.ping)] * (self.chance.random() < 0.15)
        return events + [(self.chance.choice([0, 0, 0.001, 0.03]), client.stop)] * (self.chance.random() < stops)

    def search_otherwise(self, client, white):
        chance = self.chance
        only = []
        kind = chance.choice(["movetime", "depth", "nodes", "infinite", "mate", "searchmoves", "several"])
        seconds, stop_at = LONGEST, LONGEST
        if kind == "movetime":
            seconds = chance.choice([0.001, 0.01, 0.05])
            go = "go movetime %d" % (1000 * seconds)
        elif kind == "infinite":
            go, stop_at = "go infinite", chance.choice([0, 0, 0.001, 0.02, 0.05])
        elif kind == "mate":
            go, stop_at = "go mate %d" % chance.randint(1, 4), 0.05
        elif kind == "searchmoves":
            legal = self.game.legal_moves()
            only = chance.sample(legal, chance.randint(1, min(4, len(legal))))
            go = "go depth %d searchmoves %s" % (chance.randint(1, 4), " ".join(only))
        elif kind == "several":
            go = "go depth %d nodes %d movetime %d" % (chance.randint(1, 20), chance.randint(1, 100000), 20)
            seconds = 0.02
        else:
            go = "go %s %d" % (kind, chance.randint(1, 5) if kind == "depth" else chance.choice([1, 10, 1000, 20000]))
        client.begin(self.game, go, seconds, only=only)
        # Searches without a clock are stopped shortly before their deadline.
        return client.wait([(stop_at, client.stop)] + self.disturbances(client, 0.1))

    def end_pondering(self, client):
        if client.search is not None:
            self.counts["misses"] += 1
            client.listen()
            client.stop()
            client.wait()

    def ask_when_over(self, client):
        """Checks the answer in a finished game."""
        go = self.chance.choice(["go movetime 10", "go depth 2", "go wtime 100 btime 100", "go infinite"])
        client.begin(self.game, go, LONGEST)
        client.wait([(0.02 if go == "go infinite" else LONGEST, client.stop)])
        client.settle()

    def end(self):
        """Some engines must quit during a search."""
        for client in self.players:
            if client.search is None and not client.child.has_ended():
                client.child.send("position startpos", "go infinite")
            self.counts["mates told"] += client.mates.told
            self.counts["mates that the line doesn't show"] += client.mates.missed
        shown = ["%s engine of %s: %s" % (client.child.folder.name, self.folder.name, fault)
                 for client in self.players for fault in client.mates.faults()]
        return shown + super().end()
