"""Time controls and clocks. All times are in seconds."""

import re


class TimeControl:
    """A base time with an increment, or a base time per number of moves."""

    def __init__(self, base, increment=0.0, moves=0):
        self.base, self.increment, self.moves = base, increment, moves

    def __str__(self):
        return "%s%g%s" % ("%d/" % self.moves if self.moves else "", self.base,
                           "+%g" % self.increment if self.increment else "")


def parse_time_control(text):
    """5+0.05, 60, 40/60, 1:30 or 40/0:30: seconds, or minutes and seconds. None if it is malformed."""
    match = re.fullmatch(r"(?:(\d{1,3})/)?(?:(\d{1,4}):)?(\d{1,6}(?:\.\d{1,3})?)(?:\+(\d{1,4}(?:\.\d{1,3})?))?", text)
    if match is None:
        return None
    moves, minutes, seconds, increment = match.groups()
    control = TimeControl(60 * int(minutes or 0) + float(seconds), float(increment or 0), int(moves or 0))
    return control if control.base > 0 and moves != "0" else None


class Clock:
    """The clock of one side. The margin is tolerated before a loss on time."""

    def __init__(self, control, margin=0.0):
        self.control, self.margin = control, margin
        self.left, self.moves_to_go = control.base, control.moves

    def limit(self):
        """The time allowed for the next move, margin included."""
        return self.left + self.margin

    def charge(self, seconds):
        """Charges a move; returns whether it was in time."""
        in_time = seconds <= self.limit()
        self.left = max(0.0, self.left - seconds) + self.control.increment
        if self.control.moves:
            self.moves_to_go -= 1
            if self.moves_to_go == 0:
                self.left += self.control.base
                self.moves_to_go = self.control.moves
        return in_time
