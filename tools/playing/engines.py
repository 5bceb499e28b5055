"""Engines that speak UCI or the xboard protocol, behind one interface.

    engine = UciEngine(command, folder, options)      starts it, or raises CannotStart
    engine.new_game(game, control, ponder)            before every game
    answer = engine.move(game, clocks)                asks for the move in the game's position
    engine.ponder(game, clocks, answer.ponder)        lets it ponder after its move
    engine.finish(result, reason)                     the game is over
    engine.end()                                      quits it and returns faults

clocks[True] is white's clock. Errors raise a Fault; the engine can't play another game then.
"""

import collections
import math
import re
import time

from playing.process import CannotStart, Child, Fault, Silence
from playing.rules import START, coordinates

START_PATIENCE = 10  # seconds; an xboard engine may ask for more
GRACE = 10  # seconds after the end of its time until an engine is given up

# The move in coordinates (or the raw text), the expected reply, the time taken, the engine's score as a PGN comment,
# and a claim made instead of a move.
Answer = collections.namedtuple("Answer", "move ponder seconds comment claim", defaults=["", None])


class Engine:
    """Common to both protocols."""

    reusable = True  # whether it can play another game

    def __init__(self, command, folder):
        self.child = Child(command, folder)
        try:
            self.name = self._shake_hands()
        except Fault as fault:
            self.child.kill()
            raise CannotStart("%s doesn't start: %s" % (command[0], self.child.last_words() or fault)) from None

    def end(self):
        return self.child.end()

    def kill(self):
        self.child.kill()

    def _wait(self, pattern, deadline, what):
        """The next fully matching line and its match; other lines are skipped."""
        while (line := self.child.read_before(deadline)) is not None:
            if match := re.fullmatch(pattern, line.text.strip()):
                return line, match
        raise Silence("no %s in time" % what)


def milliseconds(seconds):
    return max(1, int(1000 * seconds))


def go_by_clock(clocks, white):
    """The go command for one side with clocks."""
    words = ["go"]
    for name, side in [("w", True), ("b", False)]:
        words += [name + "time", milliseconds(clocks[side].left)]
        if clocks[side].control.increment:
            words += [name + "inc", milliseconds(clocks[side].control.increment)]
    if clocks[white].control.moves:
        words += ["movestogo", clocks[white].moves_to_go]
    return " ".join(map(str, words))


class UciEngine(Engine):
    BESTMOVE = r"bestmove\s+(\S+)(?:\s+ponder\s+(\S+))?"

    def __init__(self, command, folder, options=()):
        """`options`: pairs of name and value."""
        super().__init__(command, folder)
        self.pondered = None  # the moves of the position it ponders on
        for name, value in options:
            self.set_option(name, value)
        self.synchronise()

    def _shake_hands(self):
        self.child.send("uci")
        self.options = {}
        name = self.child.folder.name
        for line in self.child.read_until(r"uciok\s*$", START_PATIENCE):
            if match := re.match(r"id name (.*\S)", line):
                name = match[1]
            elif match := re.fullmatch(r"option name (.+?) type (\w+)(.*)", line.strip()):
                self.options[match[1]] = dict(re.findall(r"(default|min|max) (\S+)", match[3]), type=match[2])
        return name

    def set_option(self, name, value):
        """Raises CannotStart if the option doesn't exist or a number is out of range."""
        option = self.options.get(name)
        if option is None:
            raise CannotStart("%s has no option %s" % (self.name, name))
        if option["type"] == "spin":
            low, high = int(option["min"]), int(option["max"])
            if not re.fullmatch(r"-?\d{1,18}", str(value)) or not low <= int(value) <= high:
                raise CannotStart("%s of %s must be a number from %d to %d" % (name, self.name, low, high))
        self.child.send("setoption name " + name + ("" if option["type"] == "button" else " value %s" % value))

    def synchronise(self):
        self.child.send("isready")
        self._wait("readyok", time.monotonic() + START_PATIENCE, "readyok")

    def new_game(self, game, control, ponder):
        self.pondered = None
        if "Ponder" in self.options:
            self.set_option("Ponder", str(ponder).lower())
        self.child.send("ucinewgame")
        self.synchronise()

    def move(self, game, clocks):
        started = time.monotonic()
        deadline = started + clocks[game.position.white].limit() + GRACE
        if self.pondered == game.moves:
            self.child.send("ponderhit")
        else:
            self._end_pondering(deadline)
            self.child.send(game.uci_position(), go_by_clock(clocks, game.position.white))
        self.pondered = None
        line, comment = None, ""
        while line is None or not line.text.startswith("bestmove"):
            line = self.child.read_before(deadline)
            if line is None:
                raise Silence("no bestmove in time")
            if line.text.startswith("info ") and " score " in line.text:
                comment = line.text
        match = re.fullmatch(self.BESTMOVE, line.text.strip())
        if match is None:
            raise Fault("a malformed line: " + line.text)
        if line.at < started:
            raise Fault("bestmove before ponderhit")
        return Answer(match[1], match[2], line.at - started, describe_score(comment))

    def ponder(self, game, clocks, expected):
        if expected is None or game.position.parse_coordinates(expected) is None:
            return
        self.child.send(game.uci_position(expected),
                        go_by_clock(clocks, not game.position.white).replace("go", "go ponder", 1))
        self.pondered = game.moves + [expected]

    def _end_pondering(self, deadline):
        if self.pondered is not None:
            self.child.send("stop")
            self._wait(self.BESTMOVE, deadline, "bestmove after stop")

    def finish(self, result, reason):
        self._end_pondering(time.monotonic() + GRACE)
        self.pondered = None


def describe_score(info):
    """+0.31/12, or +M3/12 for a mate in three."""
    match = re.search(r" score (cp|mate) (-?\d+)", info)
    if match is None:
        return ""
    depth = re.search(r" depth (\d+)", info)
    number = int(match[2])
    score = "%+.2f" % (number / 100) if match[1] == "cp" else "%sM%d" % ("-" if number < 0 else "+", abs(number))
    return score + ("/" + depth[1] if depth else "")


class XboardEngine(Engine):
    MOVE = re.compile(r"(?:move|my move is:?|\d+\. \.\.\.)\s*(\S+)", re.IGNORECASE)
    CLAIM = re.compile(r"(1-0|0-1|1/2-1/2)\b.*|(?:tellics )?(resign)\b.*")
    REFUSAL = re.compile(r"(Illegal move|Error \(.*\)): .*", re.IGNORECASE)

    def __init__(self, command, folder, options=()):
        super().__init__(command, folder)
        for name, value in options:
            if not re.search(r'(^|\n)' + re.escape(name) + " -", self.options):
                raise CannotStart("%s has no option %s" % (self.name, name))
            self.child.send("option %s=%s" % (name, value))
        self.pings = 0

    def _shake_hands(self):
        self.child.send("xboard", "protover 2")
        self.features, self.options = {"reuse": "1", "myname": self.child.folder.name}, ""
        # Engines of protocol version 1 don't answer; xboard waits two seconds, too.
        patience = 2
        while self.features.get("done") != "1":
            try:
                line = self.child.read(patience)
            except Silence:
                break
            if not line.startswith("feature "):
                continue
            for name, value in re.findall(r'(\w+)=("[^"]*"|\S+)', line):
                self._hear_feature(name, value.strip('"'))
            patience = 60 if self.features.get("done") == "0" else 2
        self.reusable = self.features["reuse"] == "1"
        return self.features["myname"]

    def _hear_feature(self, name, value):
        if name == "option":
            self.options += value + "\n"
        elif name == "san" and value == "1":
            self.child.send("rejected san")
        else:
            self.features[name] = value
            self.child.send("accepted " + name)

    def new_game(self, game, control, ponder):
        self.sent, self.playing = 0, False
        base = math.ceil(control.base)
        self.child.send("new", "level %d %d:%02d %g" % (control.moves, base // 60, base % 60, control.increment),
                        "hard" if ponder else "easy", "nopost", "force")
        if game.first.fen() != START:
            if self.features.get("setboard") != "1":
                raise CannotStart("%s can't set up a position" % self.name)
            self.child.send("setboard " + game.first.fen())
        self._synchronise()

    def _synchronise(self):
        """Skips output about the last game."""
        if self.features.get("ping") == "1":
            self.pings += 1
            self.child.send("ping %d" % self.pings)
            self._wait("pong %d" % self.pings, time.monotonic() + START_PATIENCE, "pong")
        else:
            time.sleep(0.3)
        self.child.drop_lines()

    def move(self, game, clocks):
        white = game.position.white
        prefix = "usermove " if self.features.get("usermove") == "1" else ""
        news = [prefix + move for move in game.moves[self.sent:]]
        times = ["time %d" % (100 * clocks[white].left), "otim %d" % (100 * clocks[not white].left)]
        started = time.monotonic()
        self.child.send(*times + news if self.playing else news + times + ["go"])
        self.playing, self.sent = True, len(game.moves) + 1
        deadline = started + clocks[white].limit() + GRACE
        while (line := self.child.read_before(deadline)) is not None:
            text = line.text.strip()
            if match := self.MOVE.fullmatch(text):
                move = game.position.parse_move(match[1])
                return Answer(coordinates(move) if move else match[1], None, line.at - started)
            if match := self.CLAIM.fullmatch(text):
                return Answer(None, None, line.at - started, claim=match[1] or match[2])
            if self.REFUSAL.fullmatch(text):
                raise Fault("refused a line: " + text)
        raise Silence("no move in time")

    def ponder(self, game, clocks, expected):
        """Pondering needs no command in this protocol."""

    def finish(self, result, reason):
        self.child.send("result %s {%s}" % (result, reason), "force")


ENGINES = {"uci": UciEngine, "xboard": XboardEngine}
