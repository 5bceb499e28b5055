"""Time controls, and the clock of one side. All times are seconds."""

import re


class TimeControl:
    """A base time with an increment, or with a number of moves after which the base time is added again."""

    def __init__(self, base, increment=0.0, moves=0):
        self.base, self.increment, self.moves = base, increment, moves

    def __str__(self):
        return "%s%g%s" % ("%d/" % self.moves if self.moves else "", self.base,
                           "+%g" % self.increment if self.increment else "")


def parse_time_control(text):
    """5+0.05, 60, 40/60, 1:30 or 40/0:30: seconds, or minutes and seconds. Nothing where it is none of these."""
    match = re.fullmatch(r"(?:(\d{1,3})/)?(?:(\d{1,4}):)?(\d{1,6}(?:\.\d{1,3})?)(?:\+(\d{1,4}(?:\.\d{1,3})?))?", text)
    if match is None:
        return None
    moves, minutes, seconds, increment = match.groups()
    control = TimeControl(60 * int(minutes or 0) + float(seconds), float(increment or 0), int(moves or 0))
    return control if control.base > 0 and moves != "0" else None


class Clock:
    """What one side has left. It may think a little longer, by the margin, before its flag counts as fallen."""

    def __init__(self, control, margin=0.0):
        self.control, self.margin = control, margin
        self.left, self.moves_to_go = control.base, control.moves

    def limit(self):
        """How long the next move may take."""
        return self.left + self.margin

    def charge(self, seconds):
        """Books a move that took so long; gives whether it was made in time."""
        in_time = seconds <= self.limit()
        self.left = max(0.0, self.left - seconds) + self.control.increment
        if self.control.moves:
            self.moves_to_go -= 1
            if self.moves_to_go == 0:
                self.left += self.control.base
                self.moves_to_go = self.control.moves
        return in_time
