"""Small faults made at random in C++ sources: another operator, another constant, a condition turned around or made
constant, a statement left out.

Lines are drawn evenly over the code, and each gives at most one fault. Comments, strings, preprocessor lines, assertions
and plain declarations are left alone, and of ten rows of a table of numbers only one counts.
"""

import random
import re

OPERATORS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
    "+": "-", "-": "+", "*": "+", "/": "*", "%": "+",
    "&&": "||", "||": "&&", "&": "|", "|": "&", "^": "|", "<<": ">>", ">>": "<<",
    "+=": "-=", "-=": "+=", "&=": "|=", "|=": "&=", "^=": "|=", "*=": "+=",
}
BINARY = re.compile(r"(?<=[\w)\]] )(%s)(?= [\w(~!+-])" % "|".join(
    re.escape(operator) for operator in sorted(OPERATORS, key=len, reverse=True)))
UNARY = re.compile(r"(?<![\w)\]&|])[!~](?=[\w(])")
STEP = re.compile(r"\+\+|--")
NUMBER = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f]+|0|[1-9]\d*)(?![\w.'])")
WORD = re.compile(r"\b(true|false)\b")
CONDITION = re.compile(r"\b(if|while) \(")
STATEMENT = re.compile(r"\s+(?:\+\+|--)?[a-z_][\w.:]*(?:->[\w.]+|\[[^;]*?\])*(?:<[\w: ,]+>)?(?:\(.*\)| [-+*/&|^]?= .+|\+\+|--);$")
NO_STATEMENT = re.compile(r"\s+(?:return|break|continue|case|default|goto|using|static_assert|assert)\b")
LEFT_ALONE = re.compile(r"\s*(?:#|template\b|using\b|namespace\b|static_assert\b|assert\b|extern\b|friend\b|struct\b|enum\b|class\b)")
TABLE_ROW = re.compile(r"[-\d\s,{}x]+$")


def blanked(text):
    """The text with the inside of comments, strings and character constants replaced by blanks."""
    pattern = re.compile(r'//[^\n]*|/\*.*?\*/|R"\((?:.*?)\)"|"(?:\\.|[^"\\\n])*"|(?<![\w])\'(?:\\.|[^\'\\\n])+\'', re.DOTALL)
    return pattern.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), text)


def closing(line, start):
    """Where the bracket that opens at `start` closes in the line; -1 if it doesn't."""
    depth = 0
    for place in range(start, len(line)):
        depth += {"(": 1, ")": -1}.get(line[place], 0)
        if depth == 0:
            return place
    return -1


def other_numbers(text):
    value = int(text, 0)
    return [str(value + 1)] + ([str(value - 1)] if value > 0 else [])


def changes(line):
    """All faults of a blanked line, as (start, end, text instead)."""
    found = [(match.start(), match.end(), OPERATORS[match[0]]) for match in BINARY.finditer(line)]
    found += [(match.start(), match.end(), "") for match in UNARY.finditer(line)]
    found += [(match.start(), match.end(), "--" if match[0] == "++" else "++") for match in STEP.finditer(line)]
    found += [(match.start(), match.end(), text) for match in NUMBER.finditer(line) for text in other_numbers(match[0])]
    found += [(match.start(), match.end(), "false" if match[0] == "true" else "true") for match in WORD.finditer(line)]
    for match in CONDITION.finditer(line):
        start, end = match.end(), closing(line, match.end() - 1)
        if end < 0:
            continue
        if match[1] == "if" and ";" not in line[start:end]:
            found += [(start, end, "true"), (start, start, "!("), (start, end, "false")]
        elif match[1] == "while":
            found.append((start, end, "false"))
    if STATEMENT.match(line) and not NO_STATEMENT.match(line):
        found.append((len(line) - len(line.lstrip()), len(line), ";"))
    return found


def apply(line, change):
    start, end, text = change
    if text == "!(":
        return line[:start] + "!(" + line[start:closing(line, start - 1)] + ")" + line[closing(line, start - 1):]
    return line[:start] + text + line[end:]


def faults(sources, seed):
    """Endless in effect: every fault once, in an order given by the seed, as (name, line number from 0, line instead).

    `sources` has texts by name.
    """
    choice = random.Random(seed)
    places = []
    for name, text in sorted(sources.items()):
        lines, code = text.split("\n"), blanked(text).split("\n")
        for number, line in enumerate(code):
            if LEFT_ALONE.match(line) or not changes(line):
                continue
            if TABLE_ROW.match(line) and choice.random() >= 0.1:
                continue
            places.append((name, number, lines[number], changes(line)))
    choice.shuffle(places)
    for name, number, line, possible in places:
        yield name, number, apply(line, choice.choice(possible))
