#!/usr/bin/env python3
"""Runs the examples in the documents with the built programs and compares the output.

    tests/docs/docs_test.py build/release                     all documents
    tests/docs/docs_test.py build/release docs/console.md     one document

The word after the fence of a code block says what kind it is:

    console   a line with `$ ` is a command for bash, one with `Varn> ` a command for the console; its output follows
    xboard    a line with `> ` is sent to the engine in the xboard protocol; its answers follow
    uci       the same for varn-uci
    sh        commands that are not run: only their programs, options and presets must exist

A line `...` stands for any number of lines; within a line it stands for any text. Times, rates, node counts and hash
numbers may differ. In a block marked `any-move` the engine's moves and lines may differ as well. A block marked `setup`
is sent before each row of the tables below it. If the last column of a table begins with "example", the commands in
each row are run, and their output must contain the answers. A column "default" must agree with `uci` and with
data/varn.ini.

Links must have a target. Each heading of docs/compatibility.md must be named in the code it is about.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import threading

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PATIENCE = 60  # seconds
DOCUMENTS = ["*.md", "docs/*.md", "bench/*.md", "fuzz/*.md"]
KINDS = {"console", "xboard", "uci", "sh", "text", "json", "yaml", "python"}

# Text that differs between runs, and its replacement.
MASKS = [
    (re.compile(r"(Zobrist (?:key|lock):|NPS:) -?\d+"), r"\1 #"),
    (re.compile(r"\b(in|took) \d+ seconds"), r"\1 # seconds"),
    (re.compile(r"\b\d+ nps\b"), "# nps"),
    (re.compile(r"\b(nodes|nps|time|hashfull) \d+"), r"\1 #"),
    (re.compile(r"^( *\d+ +-?\d+) +\d+ +\d+(?: +\d+)?  +(?=\S)"), r"\1  #  "),  # a row of the table of a search
]
ANY_MOVE = [
    (re.compile(r"\b(my move is:|move|Hint:|I recommend:) .*"), r"\1 #"),
    (re.compile(r"^ *\d+ +-?\d+  #  .*"), "#"),
]


def masked(line, flags):
    for pattern, text in MASKS + (ANY_MOVE if "any-move" in flags else []):
        line = pattern.sub(text, line)
    return line.rstrip()


class Fault(Exception):
    pass


def pattern_of(line, flags):
    """The regular expression for a line and its newline, or for a line `...`."""
    if line == "...":
        return "(?:.*\n)*?"
    return ".*".join(map(re.escape, masked(line, flags).split("..."))) + "\n"


def compare(expected, lines, flags):
    """Compares the whole output with the expected lines."""
    said = "".join(masked(line, flags) + "\n" for line in lines)
    patterns = [pattern_of(line, flags) for line in expected]
    if re.fullmatch("".join(patterns), said):
        return
    held = next(count for count in range(len(patterns), -1, -1) if re.match("".join(patterns[:count]), said))
    raise Fault("prints: %s\n    at: %s" % (said[-1500:], expected[held] if held < len(expected) else "the end"))


def await_lines(expected, answers, flags):
    """Reads answers until all expected ones have been seen."""
    skipping = False
    for line in expected:
        if line == "...":
            skipping = True
            continue
        pattern = re.compile(pattern_of(line, flags))
        for answer in answers:
            if pattern.fullmatch(masked(answer, flags) + "\n"):
                break
            if not skipping:
                raise Fault("answers: %s\n    instead of: %s" % (answer, line))
        else:
            raise Fault("doesn't answer: " + line)
        skipping = False


def without_blank_end(lines):
    return "\n".join(lines).rstrip().split("\n") if "".join(lines).strip() else []


def steps_of(lines, prompt):
    """Splits a block into commands and their expected output."""
    steps = []
    for line in lines:
        if line.startswith(prompt):
            steps.append((line[len(prompt):], []))
        elif steps:
            steps[-1][1].append(line)
        else:
            raise Fault("begins without a command: " + line)
    return steps


class Documents:
    def __init__(self, build, scratch):
        self.build, self.scratch, self.faults, self.examples = build, scratch, [], 0
        for entry in ROOT.iterdir():
            if entry.name not in {"build", "data", "play", ".git"}:
                (scratch / entry.name).symlink_to(entry)
        shutil.copytree(ROOT / "data", scratch / "data")
        (scratch / "build").mkdir()
        for name in ["play", "release"]:
            (scratch / "build" / name).symlink_to(build)
        # Like the script of this name, but with this build.
        (scratch / "play").write_text('#!/bin/sh\ncd "$(dirname "$0")/data" && exec ../build/play/varn\n')
        (scratch / "play").chmod(0o755)

    # --- Processes ------------------------------------------------------------------------------------------------

    def output(self, command, text="", folder="data"):
        done = subprocess.run(command, input=text, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              cwd=self.scratch / folder, timeout=PATIENCE)
        return done.stdout

    def program(self, kind):
        return [str(self.build / ("varn-uci" if kind == "uci" else "varn"))]

    def greeting(self, kind):
        return "xboard\n" if kind == "xboard" else ""

    # --- Blocks ---------------------------------------------------------------------------------------------------

    def run_shell(self, lines, flags):
        folder = self.scratch
        for command, expected in steps_of(lines, "$ "):
            said = self.output(["bash", "-c", command + "\necho; pwd"], folder=folder)
            *said, end = said.rstrip("\n").split("\n")
            compare(without_blank_end(expected), without_blank_end(said), flags)
            folder = pathlib.Path(end)

    def run_console(self, lines, flags):
        steps = steps_of(lines, "Varn> ")
        said = self.output(self.program("console"), "".join(command + "\n" for command, _ in steps))
        answers = re.split(r"(?:^|(?<=Varn> ))Varn> ", said, flags=re.MULTILINE)[1:]
        for (command, expected), answer in zip(steps, answers + ["the program had ended\n"] * len(steps)):
            compare(without_blank_end(expected), without_blank_end(answer.split("\n")), flags)

    def run_protocol(self, kind, lines, flags):
        """Sends each line after the answers to the previous one have arrived."""
        process = subprocess.Popen(self.program(kind), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                   bufsize=1, cwd=self.scratch / "data")
        alarm = threading.Timer(PATIENCE, process.kill)
        alarm.start()
        try:
            process.stdin.write(self.greeting(kind))
            if kind == "xboard":
                process.stdout.readline()
            answers = (line.rstrip("\n") for line in process.stdout)
            for command, expected in steps_of(lines, "> "):
                process.stdin.write(command + "\n")
                await_lines(expected, answers, flags)
        finally:
            alarm.cancel()
            process.kill()
            process.communicate()

    def check_commands(self, lines, _flags):
        """Checks commands that are not run."""
        presets = re.findall(r'"name": "([\w-]+)"', (ROOT / "CMakePresets.json").read_text())
        folder = self.scratch
        for command in re.split(r"\n|&&|;|\|", re.sub(r"\\\n", " ", "\n".join(lines))):
            words = re.sub(r"(^|\s)#.*", "", command).split()
            if not words:
                continue
            if words[0] == "cd":
                folder = folder / words[1]
            path = re.sub(r"build/(%s)/" % "|".join(presets), "build/release/", words[0])
            if "/" in path and not (folder / path).exists():
                raise Fault("there is no " + words[0])
            if "--preset" in words and words[words.index("--preset") + 1] not in presets:
                raise Fault("there is no such preset: " + command)
            options = [word for word in words if word.startswith("--")]
            if "/" in path and options:
                offered = self.output([path, "--help"], folder=folder)
                for option in options:
                    if not re.search(re.escape(option) + r"(?![\w-])", offered):
                        raise Fault("%s has no option %s" % (words[0], option))

    def run_block(self, kind, flags, lines):
        if kind not in KINDS:
            raise Fault("a block is marked as one of " + ", ".join(sorted(KINDS)))
        if kind == "sh":
            self.check_commands(lines, flags)
        elif kind in {"xboard", "uci"}:
            self.run_protocol(kind, lines, flags)
        elif kind == "console":
            (self.run_shell if lines[0].startswith("$ ") else self.run_console)(lines, flags)
        self.examples += kind not in {"text", "json", "yaml", "python"}

    # --- Tables ---------------------------------------------------------------------------------------------------

    def run_row(self, kind, setup, cell):
        commands, _, answers = cell.partition("`: ")
        commands = re.findall(r"`([^`]+)`", commands + "`")
        said = self.output(self.program(kind), self.greeting(kind) + "".join(
            line + "\n" for line in setup + commands))
        for answer in re.findall(r"`([^`]+)`", answers):
            if answer not in said:
                raise Fault("%s doesn't print: %s\n    but: %s" % (commands, answer, said[-1500:]))
        if "ignoring line" not in answers and "ignoring line" in said or re.search(r"Illegal Move: (?!`)", said):
            raise Fault("%s isn't understood" % commands)
        self.examples += 1

    def defaults(self):
        found = dict(re.findall(r"^option name (.+?) type \w+(?: default (\S+(?: \S+)*?))?(?: min .*)?$",
                                self.output(self.program("uci"), "uci\nquit\n"), re.MULTILINE))
        return found | dict(re.findall(r"^(\w+) (\d+)$", (ROOT / "data/varn.ini").read_text(), re.MULTILINE))

    def check_row(self, head, cells, kind, setup):
        if head[-1].startswith("example") and "`" in cells[-1]:
            self.run_row(kind, setup, cells[-1])
        if "default" in head:
            name, default = cells[0].strip("`"), cells[head.index("default")]
            if self.defaults().get(name) != default:
                raise Fault("the default of %s is %s" % (name, self.defaults().get(name)))

    # --- Documents ------------------------------------------------------------------------------------------------

    def attempt(self, place, check, *arguments):
        try:
            check(*arguments)
        except (Fault, subprocess.TimeoutExpired) as fault:
            self.faults.append("%s: %s" % (place, fault))

    def check_links(self, document, text):
        for target in re.findall(r"\]\(([^)\s]+)\)", re.sub(r"```.*?```", "", text, flags=re.DOTALL)):
            path, _, anchor = target.partition("#")
            file = (document.parent / path).resolve() if path else document
            if "://" in target:
                continue
            if not file.exists() or (anchor and anchor not in anchors(file)):
                raise Fault("the link %s leads nowhere" % target)

    def check(self, document):
        name, text = document.relative_to(ROOT), document.read_text()
        self.attempt(name, self.check_links, document, text)
        block, head, kind, setup = None, None, "console", []
        for number, line in enumerate(text.split("\n"), 1):
            place = "%s:%d" % (name, number)
            if line.startswith("```"):
                if block is None:
                    begin, marks, block = place, line[3:].split(), []
                    continue
                self.attempt(begin, self.run_block, (marks or [""])[0], marks[1:], block)
                if "setup" in marks:
                    kind, setup = marks[0], [said.partition("> ")[2] for said in block]
                block = None
            elif block is not None:
                block.append(line)
            elif line.startswith("|"):
                cells = [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
                if head is None:
                    head = cells
                elif not line.startswith("|---"):
                    self.attempt(place, self.check_row, head, cells, kind, setup)
            else:
                head = None


def anchors(document):
    """The names that links can use: one for each heading except the title."""
    headings = re.findall(r"^##+ (.+)$", document.read_text(), re.MULTILINE)
    return [re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings]


def check_marks():
    """Checks that code and docs/compatibility.md name the same entries."""
    entries = anchors(ROOT / "docs/compatibility.md")
    named = {mark for folder in ["src", "tools"] for file in (ROOT / folder).rglob("*.[ch]*") if file.is_file()
             for mark in re.findall(r"docs/compatibility\.md#([\w-]+)", file.read_text(errors="replace"))}
    return (["docs/compatibility.md: the code doesn't name #%s" % entry for entry in entries if entry not in named] +
            ["docs/compatibility.md: it has no #%s, which the code names" % mark for mark in named - set(entries)])


def main():
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        print(__doc__)
        return 0 if "--help" in sys.argv else 2
    files = [pathlib.Path(name).resolve() for name in sys.argv[2:]] or sorted(
        {file for pattern in DOCUMENTS for file in ROOT.glob(pattern)})
    with tempfile.TemporaryDirectory(prefix="varn-docs-") as scratch:
        documents = Documents(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(scratch))
        for file in files:
            documents.check(file)
        faults = documents.faults + check_marks()
    print("\n".join(faults) or "%d examples hold" % documents.examples)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
