"""A game with its history, and how it stands by the rules."""

import collections
import re

from playing.rules import START, Position, coordinates

LENGTH_LIMIT = 1000  # plies, which is as many as Varn records


class Game:
    """The moves that led from the first position to the present one."""

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
        """Plays the move that a text in coordinates names; gives whether it is legal."""
        move = self.position.parse_coordinates(text)
        if move is not None:
            self.play(move)
        return move is not None

    def legal_moves(self):
        """In coordinates."""
        return [coordinates(move) for move in self.position.legal_moves()]

    def uci_position(self, *more):
        """The command that sets this position up, with the moves that are to follow."""
        start = "startpos" if self.first.fen() == START else "fen " + self.first.fen()
        moves = [*self.moves, *more]
        return "position " + start + (" moves " + " ".join(moves) if moves else "")

    def repeated(self):
        """Whether the present position stands for the third time."""
        return self.seen[self.position.key()] >= 3

    def end(self):
        """The result and its reason where the game is over, else nothing."""
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
    """No pawn, rook or queen, and at most one bishop or knight a side: mate could only be helped, if at all."""
    board = "".join(position.board)
    minors = [len(re.findall(side, board)) for side in ("[BN]", "[bn]")]
    return not re.search("[PRQprq]", board) and max(minors) < 2


def has_bishops_of_one_colour(position):
    """Nothing but bishops, all on squares of one colour, which no legal moves turn into a mate."""
    bishops = [square for square, piece in enumerate(position.board) if piece in "Bb"]
    others = sum(piece not in ".KkBb" for piece in position.board)
    return not others and len({(square % 8 + square // 8) % 2 for square in bishops}) <= 1
