"""Generated tables in documents: text between two comments, the first of which names the command.

    <!-- made by bench/compare search --build build/release -->
    ...
    <!-- end -->
"""

import re


def made_text(path, command):
    """The generated text of a command in the document."""
    return _find(path, command)[1]


def replace_made(path, command, text):
    before, _, after = _find(path, command)
    path.write_text("%s%s\n\n%s" % (before, text.strip(), after))


def _find(path, command):
    mark = re.escape("<!-- made by %s -->\n" % command)
    found = re.fullmatch("(.*%s)(.*?)(<!-- end -->.*)" % mark, path.read_text(), re.DOTALL)
    if not found:
        raise LookupError("%s has no place for what %s makes" % (path, command))
    return found[1], found[2].strip(), found[3]


def read_table(text):
    """The rows of a table, header first."""
    rows = [[cell.strip() for cell in line.strip("|").split("|")] for line in text.splitlines() if line.startswith("|")]
    return rows[:1] + rows[2:]


def table_text(rows):
    rows = [[str(cell) for cell in row] for row in rows]
    return "\n".join(["| " + " | ".join(row) + " |" for row in rows[:1]] + ["|" + "---|" * len(rows[0])] +
                     ["| " + " | ".join(row) + " |" for row in rows[1:]])
