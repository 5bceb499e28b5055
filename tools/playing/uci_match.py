"""UCI matches of Varn against engines of either protocol, with concurrent games."""

import time

from playing.engines import ENGINES
from playing.openings import read_openings
from playing.process import CannotStart, find_command
from playing.runner import play_game, write_pgn
from playing.score import Score, describe_strength
from playing.tool import Run, find_engine, show_progress

# Command, protocol and options of the opponents. Books are off, because both sides play the given openings.
OPPONENTS = {
    "fairymax": ("fairymax", "xboard", []),
    "glaurung": ("glaurung", "uci", [("OwnBook", "false")]),
    "gnuchess": ("gnuchess --uci", "uci", [("OwnBook", "false")]),
    "phalanx": ("phalanx -b -", "xboard", []),
    "sjeng": ("sjeng", "xboard", []),
    "stockfish": ("stockfish", "uci", []),
    "toga2": ("toga2", "uci", [("OwnBook", "false")]),
}
FAILURES = 5  # consecutive games with a broken engine that end the match


class Match:
    """State shared by all jobs."""

    def __init__(self, arguments, folder):
        self.arguments, self.folder = arguments, folder
        self.openings = read_openings(arguments.openings)
        self.varn = [str(find_engine(arguments.engine, "varn-uci"))]
        self.against_itself = arguments.opponent == "self"
        command, self.protocol, self.options = OPPONENTS.get(
            arguments.opponent, (arguments.opponent, arguments.opponent_protocol, []))
        self.opponent = self.varn if self.against_itself else find_command(command)
        if arguments.elo is not None:
            self.options = self.options + [("UCI_LimitStrength", "true"), ("UCI_Elo", str(arguments.elo))]
        self.run, self.score = Run(arguments.games), Score()
        self.names, self.lost_on_time = {}, {True: 0, False: 0}  # by whether it is Varn
        self.opponent_faults, self.failures = [], 0
        self.pgn = open(arguments.pgn, "w") if arguments.pgn else None

    def start(self, is_varn, folder):
        """Starts one of the two engines in its own folder."""
        folder.mkdir(parents=True, exist_ok=True)
        # Games start from the given openings instead.
        if is_varn or self.against_itself:
            engine = ENGINES["uci"](self.varn, folder)
            wanted = [("OwnBook", "false")] if "OwnBook" in engine.options else []
            for name, value in wanted + (self.arguments.option if is_varn else self.arguments.opponent_option):
                engine.set_option(name, value)
            engine.synchronise()
        else:
            engine = ENGINES[self.protocol](self.opponent, folder, self.options + self.arguments.opponent_option)
        self.names[is_varn] = engine.name if is_varn or not self.against_itself else engine.name + " (2)"
        return engine

    def note(self, number, varn_is_white, outcome):
        """Records a finished game."""
        with self.run.lock:
            self.score.add(outcome.result, varn_is_white)
            if outcome.fault:
                by_varn = outcome.culprit == varn_is_white
                self.lost_on_time[by_varn] += outcome.fault.startswith("loss on time")
                faults = self.run.faults if by_varn or self.against_itself else self.opponent_faults
                faults.append("game %d: %s: %s" % (number + 1, "white" if outcome.culprit else "black", outcome.fault))
            self.failures = self.failures + 1 if outcome.broken else 0
            if self.failures >= FAILURES:
                self.run.stop()
            if self.pgn:
                names = {varn_is_white: self.names[True], not varn_is_white: self.names[False]}
                write_pgn(self.pgn, number + 1, names, self.arguments.control, outcome)
            show_progress("%d of %d games, %s, Elo %s " % (self.score.games(), self.run.games, self.score,
                                                          describe_strength(self.score)))

    def play_share(self, job):
        """Plays games until none are left."""
        folder = self.folder / ("job%d" % (job + 1))
        engines = {}
        while (number := self.run.next_game()) is not None:
            for is_varn in (True, False):
                if is_varn not in engines:
                    engines[is_varn] = self.start(is_varn, folder / ("varn" if is_varn else "opponent"))
            varn_is_white = number % 2 == 0
            opening = self.openings[number // 2 % len(self.openings)]
            outcome = play_game({varn_is_white: engines[True], not varn_is_white: engines[False]}, opening,
                                self.arguments.control, self.arguments.margin / 1000, self.arguments.ponder)
            if self.run.stopped and outcome.broken:
                return
            self.note(number, varn_is_white, outcome)
            if outcome.fault:
                self.keep_dialogues(number, engines)
            self.end(number, engines, lambda engine: outcome.broken or not engine.reusable)
        self.end(self.run.games - 1, engines, lambda engine: True)

    def keep_dialogues(self, number, engines):
        for is_varn, engine in engines.items():
            engine.child.keep_dialogue(self.folder / ("game%d-%s" % (number + 1, "varn" if is_varn else "opponent")))

    def end(self, number, engines, concerns):
        """Quits engines; Varn's faults in quitting are recorded."""
        for is_varn, engine in list(engines.items()):
            if concerns(engine):
                del engines[is_varn]
                found = engine.end() if is_varn or self.against_itself else engine.kill()
                if found:
                    with self.run.lock:
                        self.run.faults += ["after game %d: %s" % (number + 1, fault) for fault in found]


def report(match, seconds):
    score, names = match.score, match.names
    print("%s against %s, %s, ponder %s, %d games in %d s" % (
        names[True], names[False] + (" at Elo %d" % match.arguments.elo if match.arguments.elo else ""),
        match.arguments.control, "on" if match.arguments.ponder else "off", score.games(), seconds))
    print("  score          %s, %g of %d (%.1f%%)" % (
        score, score.points(), score.games(), 100 * score.points() / score.games()))
    print("  Elo difference " + describe_strength(score))
    print("  lost on time   %d by Varn, %d by the opponent" % (match.lost_on_time[True], match.lost_on_time[False]))
    print("  faults         %d of Varn, %d of the opponent" % (len(match.run.faults), len(match.opponent_faults)))
    for fault in match.opponent_faults[:10]:
        print("  the opponent's: " + fault)


def play_by_uci(arguments, folder):
    """Plays the match, prints the report, also if interrupted, and returns Varn's faults."""
    match = Match(arguments, folder)
    started = time.monotonic()
    try:
        match.run.play(match.play_share, arguments.concurrency)
    finally:
        show_progress("")
        if match.score.games():
            report(match, time.monotonic() - started)
    if match.failures >= FAILURES and not match.run.faults:
        raise CannotStart("the opponent failed in %d consecutive games" % match.failures)
    return match.run.faults
