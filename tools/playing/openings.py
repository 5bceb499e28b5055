"""Openings: short lines of moves or positions."""

import collections

from playing.game import Game
from playing.process import CannotStart
from playing.rules import START

Opening = collections.namedtuple("Opening", "fen moves")


def read_openings(file):
    """One opening per line: moves in SAN or coordinates, or a position in FEN or EPD; # starts a comment."""
    openings = []
    try:
        text = file.read_text()
    except (OSError, UnicodeDecodeError) as error:
        raise CannotStart("can't read %s: %s" % (file, getattr(error, "strerror", None) or "not a text file")) from None
    for number, line in enumerate(text.split("\n"), 1):
        line = line.partition("#")[0].strip()
        if not line:
            continue
        try:
            opening = read_position(line) if "/" in line.split()[0] else read_line(line)
            if begin(opening).end() is not None:
                raise ValueError("the game is over")
        except ValueError as error:
            raise CannotStart("%s, line %d: %s" % (file, number, error)) from None
        openings.append(opening)
    if not openings:
        raise CannotStart("%s contains no opening" % file)
    return openings


def read_position(line):
    words = line.split()
    counts = words[4:6] if len(words) >= 6 and words[4].isdigit() and words[5].isdigit() else []
    return Opening(" ".join(words[:4] + counts), [])


def read_line(line):
    game = Game()
    for word in line.split():
        word = word.lstrip("0123456789.") if "." in word else word
        if word:
            move = game.position.parse_move(word)
            if move is None:
                raise ValueError("no legal move: " + word)
            game.play(move)
    return Opening(START, game.moves)


def begin(opening):
    """A game after its opening moves."""
    game = Game(opening.fen)
    for move in opening.moves:
        game.follow(move)
    return game
