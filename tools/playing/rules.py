"""Chess rules: positions, legal moves and move notation, independent of Varn in order to check it.

A square is a number, a1 = 0 to h8 = 63. A move is a tuple (from, to, promotion); promotion is a letter of "qrbn" or "".
"""

import re

START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"
FILES, RANKS = "abcdefgh", "12345678"
NAMES = [file + rank for rank in RANKS for file in FILES]
SQUARES = {name: square for square, name in enumerate(NAMES)}
STRAIGHT = [(1, 0), (-1, 0), (0, 1), (0, -1)]
DIAGONAL = [(1, 1), (1, -1), (-1, 1), (-1, -1)]
LEAPS = [(1, 2), (2, 1), (2, -1), (1, -2), (-1, -2), (-2, -1), (-2, 1), (-1, 2)]


def reach(square, steps, distance):
    """For each direction the squares reached on the board, nearest first."""
    rays = []
    for right, up in steps:
        ray = []
        for length in range(1, distance + 1):
            file, rank = square % 8 + length * right, square // 8 + length * up
            if not (0 <= file < 8 and 0 <= rank < 8):
                break
            ray.append(file + 8 * rank)
        if ray:
            rays.append(ray)
    return rays


RAYS = {piece: [reach(square, steps, distance) for square in range(64)]
        for piece, steps, distance in [("n", LEAPS, 1), ("k", STRAIGHT + DIAGONAL, 1), ("b", DIAGONAL, 7),
                                       ("r", STRAIGHT, 7), ("q", STRAIGHT + DIAGONAL, 7)]}
# Squares attacked by a pawn.
PAWN_ATTACKS = {white: [sum(reach(square, [(-1, up), (1, up)], 1), []) for square in range(64)]
                for white, up in [(True, 1), (False, -1)]}
# Castling rights lost by a move from or to a square.
LOST_RIGHTS = {0: "Q", 4: "KQ", 7: "K", 56: "q", 60: "kq", 63: "k"}
AT_HOME = {"K": [(4, "K"), (7, "R")], "Q": [(4, "K"), (0, "R")],
           "k": [(60, "k"), (63, "r")], "q": [(60, "k"), (56, "r")]}
# By right: the king's square, squares that must be empty, squares that must not be attacked.
CASTLING = {"K": (4, (5, 6), (4, 5, 6)), "Q": (4, (1, 2, 3), (4, 3, 2)),
            "k": (60, (61, 62), (60, 61, 62)), "q": (60, (57, 58, 59), (60, 59, 58))}


class Position:
    """An immutable position: making a move returns a new one."""

    __slots__ = ["board", "white", "rights", "en_passant", "fifty", "number"]

    def __init__(self, fen=START):
        """Raises ValueError if the text is no FEN or the position is illegal."""
        fields = fen.split()
        if not 4 <= len(fields) <= 6 or fields[1] not in ("w", "b"):
            raise ValueError("not a FEN: " + fen)
        rows = [re.sub(r"\d", lambda digit: "." * int(digit[0]), row) for row in fields[0].split("/")]
        if len(rows) != 8 or any(not re.fullmatch("[PNBRQKpnbrqk.]{8}", row) for row in rows):
            raise ValueError("not a board: " + fields[0])
        self.board = list("".join(reversed(rows)))
        self.white = fields[1] == "w"
        if not re.fullmatch("-|K?Q?k?q?", fields[2]) or not re.fullmatch("-|[a-h][36]", fields[3]):
            raise ValueError("not a FEN: " + fen)
        self.rights = fields[2].replace("-", "")
        self.en_passant = SQUARES.get(fields[3])
        counts = fields[4:] + ["0", "1"][len(fields) - 4:]
        if not all(re.fullmatch(r"\d{1,4}", count) for count in counts):
            raise ValueError("not a FEN: " + fen)
        self.fifty, self.number = map(int, counts)
        if not self._is_possible():
            raise ValueError("not a legal position: " + fen)

    def _is_possible(self):
        board = self.board
        if board.count("K") != 1 or board.count("k") != 1 or self.attacked(self.king(not self.white), self.white):
            return False
        if any(piece in "Pp" for piece in board[:8] + board[56:]):
            return False
        if any(board[square] != piece for right in self.rights for square, piece in AT_HOME[right]):
            return False
        target, step, pawn = self.en_passant, -8 if self.white else 8, "p" if self.white else "P"
        return target is None or target // 8 == (5 if self.white else 2) and board[target + step] == pawn and \
            board[target] == board[target - step] == "."

    def fen(self):
        rows = ["".join(self.board[8 * rank:8 * rank + 8]) for rank in range(7, -1, -1)]
        board = re.sub(r"\.+", lambda gap: str(len(gap[0])), "/".join(rows))
        return "%s %s %s %s %d %d" % (board, "w" if self.white else "b", self.rights or "-",
                                      "-" if self.en_passant is None else NAMES[self.en_passant], self.fifty,
                                      self.number)

    def king(self, white):
        return self.board.index("K" if white else "k")

    def attacked(self, square, by_white):
        board, spell = self.board, str.upper if by_white else str.lower
        if any(board[origin] == spell("p") for origin in PAWN_ATTACKS[not by_white][square]):
            return True
        for piece in "nk":
            if any(board[ray[0]] == spell(piece) for ray in RAYS[piece][square]):
                return True
        for sliders, piece in [(spell("rq"), "r"), (spell("bq"), "b")]:
            for ray in RAYS[piece][square]:
                for origin in ray:
                    if board[origin] != ".":
                        if board[origin] in sliders:
                            return True
                        break
        return False

    def in_check(self):
        return self.attacked(self.king(self.white), not self.white)

    # --- Moves ----------------------------------------------------------------------------------------------------

    def _is_own(self, piece):
        return piece != "." and piece.isupper() == self.white

    def _targets(self, square):
        """Pseudo-legal targets of the piece on a square, without castling."""
        piece = self.board[square].lower()
        if piece == "p":
            yield from self._pawn_targets(square)
            return
        for ray in RAYS[piece][square]:
            for target in ray:
                if self.board[target] == ".":
                    yield target
                    continue
                if not self._is_own(self.board[target]):
                    yield target
                break

    def _pawn_targets(self, square):
        step, home = (8, 1) if self.white else (-8, 6)
        if self.board[square + step] == ".":
            yield square + step
            if square // 8 == home and self.board[square + 2 * step] == ".":
                yield square + 2 * step
        for target in PAWN_ATTACKS[self.white][square]:
            if target == self.en_passant or self.board[target] != "." and not self._is_own(self.board[target]):
                yield target

    def _castling_targets(self):
        for right in self.rights:
            king, between, walk = CASTLING[right]
            if right.isupper() == self.white and all(self.board[square] == "." for square in between):
                if not any(self.attacked(square, not self.white) for square in walk):
                    yield king, walk[-1]

    def moves_from(self, square):
        """Legal moves of one piece."""
        if not self._is_own(self.board[square]):
            return []
        targets = list(self._targets(square))
        if self.board[square] in "Kk":
            targets += [target for king, target in self._castling_targets() if king == square]
        promotes = self.board[square] in "Pp"
        moves = [(square, target, promotion) for target in targets
                 for promotion in ("qrbn" if promotes and target // 8 in (0, 7) else [""])]
        return [move for move in moves if not self._leaves_king_attacked(move)]

    def _leaves_king_attacked(self, move):
        after = self.after(move)
        return after.attacked(after.king(self.white), after.white)

    def legal_moves(self):
        return [move for square in range(64) for move in self.moves_from(square)]

    def has_legal_move(self):
        return any(self.moves_from(square) for square in range(64))

    def after(self, move):
        """The position after a pseudo-legal move."""
        origin, target, promotion = move
        result = Position.__new__(Position)
        board = result.board = self.board.copy()
        piece, captured = board[origin], board[target]
        board[origin], board[target] = ".", piece
        if promotion:
            board[target] = promotion.upper() if self.white else promotion
        result.en_passant = None
        if piece in "Pp":
            if target == self.en_passant:
                board[target + (-8 if self.white else 8)] = "."
            if abs(target - origin) == 16:
                result.en_passant = (origin + target) // 2
        elif piece in "Kk" and abs(target - origin) == 2:
            rook = target + 1 if target > origin else target - 2
            board[(origin + target) // 2], board[rook] = board[rook], "."
        result.rights = self.rights
        for square in (origin, target):
            for right in LOST_RIGHTS.get(square, ""):
                result.rights = result.rights.replace(right, "")
        result.white = not self.white
        result.fifty = 0 if piece in "Pp" or captured != "." else self.fifty + 1
        result.number = self.number + (not self.white)
        return result

    def key(self):
        """Equal for positions that count as repeated: en passant matters only if such a capture is legal."""
        target = self.en_passant
        if target is not None:
            pawn = "P" if self.white else "p"
            if not any(self.board[origin] == pawn and not self._leaves_king_attacked((origin, target, ""))
                       for origin in PAWN_ATTACKS[not self.white][target]):
                target = None
        return "".join(self.board), self.white, self.rights, target

    # --- Notations ------------------------------------------------------------------------------------------------

    def parse_coordinates(self, text):
        """The legal move in coordinate notation (e2e4, a7a8q), or None."""
        match = re.fullmatch(r"([a-h][1-8])([a-h][1-8])([qrbn]?)", text)
        if match is None:
            return None
        move = SQUARES[match[1]], SQUARES[match[2]], match[3]
        return move if move in self.moves_from(move[0]) else None

    def parse_san(self, text):
        """The legal move in SAN (Nbd2), or None."""
        plain = text.rstrip("+#!?").replace("0", "O")
        found = [move for move in self.legal_moves() if self.san(move, bare=True) == plain]
        return found[0] if found else None

    def parse_move(self, text):
        """The legal move in either notation, ignoring the case of promotions and castling."""
        move = self.parse_coordinates(text) or self.parse_coordinates(text.lower())
        return move or self.parse_san(text.upper() if text.lower() in ("o-o", "o-o-o") else text)

    def san(self, move, bare=False):
        """SAN as in PGN; `bare`: without check and mate signs."""
        origin, target, promotion = move
        piece = self.board[origin].upper()
        captures = self.board[target] != "." or piece == "P" and origin % 8 != target % 8
        if piece == "K" and abs(target - origin) == 2:
            text = "O-O" if target > origin else "O-O-O"
        elif piece == "P":
            text = (NAMES[origin][0] if captures else "") + "x" * captures + NAMES[target]
            text += "=" + promotion.upper() if promotion else ""
        else:
            text = piece + self._distinction(origin, target) + "x" * captures + NAMES[target]
        if bare:
            return text
        after = self.after(move)
        return text + ("" if not after.in_check() else "+" if after.has_legal_move() else "#")

    def _distinction(self, origin, target):
        """Disambiguation from other pieces of the same type that can move to the same square."""
        rivals = [square for square in range(64) if square != origin and self.board[square] == self.board[origin]
                  and any(move[1] == target for move in self.moves_from(square))]
        if not rivals:
            return ""
        if all(square % 8 != origin % 8 for square in rivals):
            return NAMES[origin][0]
        return NAMES[origin] if any(square // 8 == origin // 8 for square in rivals) else NAMES[origin][1]


def coordinates(move):
    return NAMES[move[0]] + NAMES[move[1]] + move[2]
