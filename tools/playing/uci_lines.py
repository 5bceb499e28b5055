"""Checks of a UCI engine's search output against the protocol and the rules of chess."""

import re

from playing.process import Fault

MATE_BAND = 9500  # centipawns; higher scores of Varn are mates
LONGEST_MATE = 250  # moves
NUMBERS = {"depth", "seldepth", "multipv", "time", "nodes", "nps", "hashfull", "tbhits", "sbhits", "cpuload",
           "currmovenumber"}


def parse_info(text):
    """The fields of an info line. `score` is ("cp" or "mate", number), `bound` the kind of bound."""
    words = text.split()[1:]
    parts = {}
    while words:
        word = words.pop(0)
        if word == "string":
            parts["string"], words = " ".join(words), []
        elif word == "pv":
            parts["pv"], words = words, []
            if not parts["pv"]:
                raise Fault("an empty pv: " + text)
        elif word == "currmove" and words:
            parts["currmove"] = words.pop(0)
        elif word == "score" and len(words) >= 2 and words[0] in ("cp", "mate") and re.fullmatch(r"-?\d+", words[1]):
            parts["score"] = words[0], int(words[1])
            words = words[2:]
        elif word in ("lowerbound", "upperbound") and "score" in parts:
            parts["bound"] = word
        elif word in NUMBERS and words and re.fullmatch(r"\d+", words[0]):
            parts[word] = int(words.pop(0))
        else:
            raise Fault("a malformed line at %s: %s" % (word, text))
    return parts


class Mates:
    """Counts mate scores, and those whose lines are too long or don't end in mate.

    Scores from the hash table may belong to another line than the one shown, so a few mismatches are allowed."""

    def __init__(self):
        self.told, self.missed, self.example = 0, 0, None

    def note(self, info, text, position):
        kind, number = info.get("score", ("cp", 0))
        if kind != "mate" or number == 0 or "bound" in info:
            return
        self.told += 1
        plies = 2 * number - 1 if number > 0 else -2 * number
        ends_in_mate = position.in_check() and not position.has_legal_move()
        if len(info["pv"]) > plies or len(info["pv"]) == plies and not ends_in_mate:
            self.missed += 1
            self.example = text

    def faults(self):
        if self.missed <= max(2, self.told // 100):
            return []
        return ["%d of %d mates are not what the lines show, such as %s" % (self.missed, self.told, self.example)]


def check_info(search, mates):
    """Checks all info lines of a search; returns the first move of the last best line, or None."""
    last, root = {"time": 0, "nodes": 0}, Node(search.position)
    group = {}  # first moves of the last lines, by number
    for text in search.infos:
        info = parse_info(text)
        try:
            check_numbers(search, info, last)
            if "currmove" in info and info["currmove"] not in search.moves:
                raise Fault("an illegal currmove")
            if "pv" in info:
                mates.note(info, text, check_line(search, root, info))
        except Fault as fault:
            raise Fault("%s: %s" % (fault, text)) from None
        if "pv" in info:
            number = info.get("multipv", 1)
            group = {} if number == 1 else group
            group[number] = info["pv"][0]
    if len(set(group.values())) != len(group):
        raise Fault("two lines begin with the same move")
    return group.get(1)


def check_numbers(search, info, last):
    for name in last:
        if info.get(name, last[name]) < last[name]:
            raise Fault(name + " runs backwards")
        last[name] = info.get(name, last[name])
    if info.get("hashfull", 0) > 1000:
        raise Fault("hashfull above 1000")
    if "multipv" in info and not search.over and not 1 <= info["multipv"] <= search.lines:
        raise Fault("a line of number %d, of %d" % (info["multipv"], search.lines))
    if "score" in info:
        kind, number = info["score"]
        if abs(number) > (LONGEST_MATE if kind == "mate" else MATE_BAND - 1):
            raise Fault("a score out of range")
        if (kind, number) == ("mate", 0) and search.moves:
            raise Fault("a score for a side that is mated")


class Node:
    """A tree of positions; caches moves that lines have in common."""

    def __init__(self, position):
        self.position, self.behind = position, {}

    def follow(self, text):
        """The node after a move, or None if it is illegal."""
        if text not in self.behind:
            move = self.position.parse_coordinates(text)
            self.behind[text] = None if move is None else Node(self.position.after(move))
        return self.behind[text]


def check_line(search, root, info):
    """Checks that a principal variation is legal; returns its final position."""
    if search.moves and info["pv"][0] not in search.moves:
        raise Fault("the line begins with an excluded move")
    node = root
    for text in info["pv"]:
        node = node.follow(text)
        if node is None:
            raise Fault("an illegal move %s in the line" % text)
    return node.position


def parse_bestmove(search, best):
    """The move and the expected reply or None. `best`: the first move of the last best line, or None."""
    match = re.fullmatch(r"bestmove (\S+)(?: ponder (\S+))?", search.bestmove.text)
    if match is None:
        raise Fault("a malformed line: " + search.bestmove.text)
    move, expected = match.groups()
    if not search.moves or search.over and move == "(none)":
        if (move, expected) != ("(none)", None):
            raise Fault("a move although the game is over: " + search.bestmove.text)
        return move, None
    if move not in search.moves:
        raise Fault("an illegal move: " + search.bestmove.text)
    if best not in (None, move):
        raise Fault("the best line began with %s: %s" % (best, search.bestmove.text))
    if expected is not None:
        after = search.position.after(search.position.parse_coordinates(move))
        if after.parse_coordinates(expected) is None:
            raise Fault("an illegal move to ponder on: " + search.bestmove.text)
    return move, expected

