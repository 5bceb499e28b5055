"""Games between two engines with clocks and a referee, and PGN output."""

import collections
import datetime
import textwrap

from playing.clock import Clock
from playing.openings import begin
from playing.process import CannotStart, Fault
from playing.rules import START

# `fault` describes an error of one of the engines, or is None; `culprit` is whether white made it; `broken` means that
# the engine can't play another game.
Outcome = collections.namedtuple("Outcome", "game result reason comments fault culprit broken",
                                 defaults=[None, None, False])


def play_game(engines, opening, control, margin, ponder):
    """Plays one game; engines[True] is white."""
    game = begin(opening)
    clocks = {white: Clock(control, margin) for white in (True, False)}
    comments = {}

    def lost(white, fault, broken=False):
        result = "0-1" if white else "1-0"
        return Outcome(game, result, ("White: " if white else "Black: ") + fault, comments, fault, white, broken)

    def finish(outcome):
        for white, engine in engines.items():
            try:
                engine.finish(outcome.result, outcome.reason)
            except Fault as fault:
                outcome = outcome._replace(broken=True)
                if not outcome.fault:
                    outcome = outcome._replace(fault=str(fault), culprit=white)
        return outcome

    mover = True
    try:
        for mover in (True, False):
            engines[mover].new_game(game, control, ponder)
        while game.end() is None:
            mover = game.position.white
            answer = engines[mover].move(game, clocks)
            claimed = judge_claim(game, answer.claim, mover) if answer.claim else None
            if claimed is not None:
                return finish(Outcome(game, *claimed, comments))
            over = answer.seconds - clocks[mover].left
            if answer.claim or not game.follow(answer.move):
                what = "false claim" if answer.claim else "illegal move"
                return finish(lost(mover, "%s: %s" % (what, answer.claim or answer.move)))
            comments[len(game.moves)] = (answer.comment + " " if answer.comment else "") + "%.2fs" % answer.seconds
            if not clocks[mover].charge(answer.seconds):
                return finish(lost(mover, "loss on time, by %.0f ms" % (1000 * over)))
            if ponder and game.end() is None:
                engines[mover].ponder(game, clocks, answer.ponder)
    except CannotStart:
        raise
    except Fault as fault:
        return lost(mover, str(fault), broken=True)
    result, reason = game.end()
    return finish(Outcome(game, result, reason, comments))


def judge_claim(game, claim, mover):
    """The result and reason of a claim by the side to move, or None if the claim is false."""
    if claim == "resign" or claim == ("0-1" if mover else "1-0"):
        return ("0-1", "White resigns") if mover else ("1-0", "Black resigns")
    if claim == "1/2-1/2" and any(draws(game, move) for move in game.position.legal_moves()):
        return claim, "draw claimed by repetition or fifty moves"
    return None


def draws(game, move):
    """Whether a move leads to a draw by repetition or the fifty-move rule."""
    after = game.position.after(move)
    return after.fifty >= 100 or game.seen[after.key()] >= 2


def write_pgn(file, number, names, control, outcome):
    """Appends a game to a PGN file; names[True] is white."""
    game = outcome.game
    tags = [("Event", "Engine match"), ("Site", "?"), ("Date", datetime.date.today().strftime("%Y.%m.%d")),
            ("Round", number), ("White", names[True]), ("Black", names[False]), ("Result", outcome.result),
            ("TimeControl", str(control))]
    if game.first.fen() != START:
        tags += [("SetUp", "1"), ("FEN", game.first.fen())]
    words, position = [], game.first
    for ply, text in enumerate(game.moves, 1):
        move = position.parse_coordinates(text)
        if position.white or ply == 1:
            words.append("%d.%s" % (position.number, "" if position.white else ".."))
        words.append(position.san(move))
        if ply in outcome.comments:
            words.append("{%s}" % outcome.comments[ply])
        position = position.after(move)
    words += ["{%s}" % outcome.reason.replace("}", ")"), outcome.result]
    for name, value in tags:
        file.write('[%s "%s"]\n' % (name, str(value).replace("\\", "\\\\").replace('"', '\\"')))
    file.write("\n" + textwrap.fill(" ".join(words), 80, break_long_words=False, break_on_hyphens=False) + "\n\n")
    file.flush()
