"""A game with its history and result."""

import collections
import re

from playing.rules import START, Position, coordinates

LENGTH_LIMIT = 1000  # plies; Varn records no more


class Game:
    """A game: its first and current position and the moves between them."""

    def __init__(self, fen=START):
        self.first = self.position = Position(fen)
        self.moves, self.seen = [], collections.Counter([self.position.key()])

    def copy(self):
        result = Game.__new__(Game)
        result.first, result.position = self.first, self.position
        result.moves, result.seen = self.moves.copy(), self.seen.copy()
        return result

    def play(self, move):
        self.moves.append(coordinates(move))
        self.position = self.position.after(move)
        self.seen[self.position.key()] += 1

    def follow(self, text):
        """Plays a move in coordinate notation; returns whether it is legal."""
        move = self.position.parse_coordinates(text)
        if move is not None:
            self.play(move)
        return move is not None

    def legal_moves(self):
        """In coordinate notation."""
        return [coordinates(move) for move in self.position.legal_moves()]

    def uci_position(self, *more):
        """The UCI position command for this game, followed by more moves."""
        start = "startpos" if self.first.fen() == START else "fen " + self.first.fen()
        moves = [*self.moves, *more]
        return "position " + start + (" moves " + " ".join(moves) if moves else "")

    def repeated(self):
        """Whether this is the third occurrence of the position."""
        return self.seen[self.position.key()] >= 3

    def end(self):
        """The result and its reason, or None if the game isn't over."""
        position = self.position
        if not position.has_legal_move():
            if not position.in_check():
                return "1/2-1/2", "stalemate"
            return ("0-1", "Black mates") if position.white else ("1-0", "White mates")
        if has_bare_pieces(position) or has_bishops_of_one_colour(position):
            return "1/2-1/2", "insufficient material"
        if self.repeated():
            return "1/2-1/2", "repetition"
        if position.fifty >= 100:
            return "1/2-1/2", "fifty moves"
        return ("1/2-1/2", "length of the game") if len(self.moves) >= LENGTH_LIMIT else None


def has_bare_pieces(position):
    """No pawn, rook or queen, and at most one minor piece per side: mate cannot be forced."""
    board = "".join(position.board)
    minors = [len(re.findall(side, board)) for side in ("[BN]", "[bn]")]
    return not re.search("[PRQprq]", board) and max(minors) < 2


def has_bishops_of_one_colour(position):
    """Only bishops, all on squares of one colour: mate is impossible."""
    bishops = [square for square, piece in enumerate(position.board) if piece in "Bb"]
    others = sum(piece not in ".KkBb" for piece in position.board)
    return not others and len({(square % 8 + square // 8) % 2 for square in bishops}) <= 1
