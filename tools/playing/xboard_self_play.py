"""Self-play by the xboard protocol, without xboard."""

import collections
import re
import time

from playing.game import LENGTH_LIMIT, has_bare_pieces
from playing.process import Child, Fault
from playing.self_play import Pair, random_opening
from playing.tool import set_up_engine
from playing.under_xboard import RESULT

# 2120 ms left minus 20 ms reserve: a thirtieth is 70 ms, and increment games subtract 50 ms. The same time is sent
# before every move.
LEVEL, CLOCK, MOVE_MS = "level 0 1 0", "212", 20
EXPECTED = re.compile(r"got time: 2100|turns left = -?\d+|allocating %d milliseconds for search\."
                      r"|pondering enabled|i am going to try to ponder|pondering: \w+" % MOVE_MS)


def claim(game):
    """The claim that Varn must make; None during the game."""
    end = game.end()
    if end is not None and "mates" in end[1]:
        return "%s {%s}" % end
    if end == ("1/2-1/2", "stalemate"):
        return "1/2-1/2 {Stalemate}"
    if game.position.fifty >= 100:
        return "1/2-1/2 {Draw by 50 move rule}"
    if has_bare_pieces(game.position):
        return "1/2-1/2 {Draw by insufficient materal}"
    if game.repeated():
        return "1/2-1/2 {Draw by repetition}"
    return "1/2-1/2 {Draw by game length}" if len(game.moves) == LENGTH_LIMIT else None


class Player(Child):
    """One Varn."""

    def __init__(self, arguments, folder):
        set_up_engine(arguments, folder, book=False)
        super().__init__(["./varn"], folder)
        self.send("xboard")
        self.read()
        self.counts = collections.Counter()

    def start(self, ponder):
        self.send("new", LEVEL, "hard" if ponder else "easy", "force", "protover 2")
        self.read_until("feature done=1")

    def answer(self, *lines):
        """The answer to the lines, a move or a claim, and the seconds it took."""
        started = time.monotonic()
        self.send("time " + CLOCK, "otim " + CLOCK, *lines)
        answer = self.hear(*lines)
        return answer, time.monotonic() - started

    def hear(self, *lines):
        """The next move or claim, after any output that followed the last move."""
        while True:
            line = self.read()
            if RESULT.fullmatch(line) or line.startswith("move "):
                return line
            if line.startswith("pondering: "):
                self.counts["pondered on"] += 1
                self.counts["hits"] += line.split()[1] in lines
            if not EXPECTED.fullmatch(line):
                raise Fault("an unexpected line: " + line)


class XboardPair(Pair):
    """A pair for the xboard protocol."""

    def start(self, folder):
        return Player(self.arguments, folder)

    def child(self, player):
        return player

    def play_game(self, number, chance):
        """A game that starts with some random moves."""
        ponder = {"all": True, "none": False, "half": number % 2 == 0}[self.arguments.ponder]
        self.game = game = random_opening(chance, 1, 12, claim)
        for player in self.players:
            player.start(ponder)
            player.send(*game.moves)
        first, opening = number // 2 % 2, len(game.moves)
        while True:
            plies = len(game.moves)
            mover = self.players[(first + plies) % 2]
            true_claim = claim(game)
            lines = [] if plies == opening else game.moves[-1:]
            # After the opening each engine must be told to play its first move.
            if plies < opening + 2 and true_claim is None:
                lines.append("go")
            answer, taken = mover.answer(*lines)
            if true_claim is not None or RESULT.fullmatch(answer):
                claims = {answer}
                if plies > opening + 2:  # no claim after go
                    claims.add(self.players[(first + plies + 1) % 2].hear())
                if claims != {true_claim}:
                    raise Fault("claimed %s instead of %s" % (" and ".join(sorted(claims)), true_claim))
                for player in self.players:
                    self.counts.update(player.counts)
                    player.counts.clear()
                return true_claim
            if not game.follow(answer.removeprefix("move ")):
                raise Fault("an illegal move: " + answer)
            self.note_move(taken)
