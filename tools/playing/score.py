"""Match scores and Elo estimates."""

import math

CONFIDENCE = 1.96  # standard deviations of a 95 % interval


class Score:
    def __init__(self):
        self.won = self.lost = self.drawn = 0

    def add(self, result, white):
        """Adds a result; `white`: whether the scored side had white."""
        if result == "1/2-1/2":
            self.drawn += 1
        elif (result == "1-0") == white:
            self.won += 1
        else:
            self.lost += 1

    def games(self):
        return self.won + self.lost + self.drawn

    def points(self):
        return self.won + self.drawn / 2

    def __str__(self):
        return "+%d -%d =%d" % (self.won, self.lost, self.drawn)

    def margin(self):
        """Error margin of the score fraction at 95 % confidence; the rule of three if all games ended alike."""
        share, games = self.points() / self.games(), self.games()
        variance = (self.won + self.drawn / 4) / games - share ** 2
        return CONFIDENCE * math.sqrt(variance / games) if variance > 1e-9 else min(1.0, 3 / games)


def elo(share):
    """The Elo difference for an expected score fraction."""
    if share <= 0 or share >= 1:
        return math.copysign(math.inf, share - 0.5)
    return -400 * math.log10(1 / share - 1)


def describe_strength(score):
    """The Elo difference with its error bounds."""
    if not score.games():
        return "unknown"
    share, margin = score.points() / score.games(), score.margin()
    low, high = elo(share - margin), elo(share + margin)
    error = "" if math.isinf(low) or math.isinf(high) else " +/- %.0f" % ((high - low) / 2)
    return "%+.0f%s (95%%: %+.0f to %+.0f)" % (elo(share), error, low, high)
