#!/usr/bin/env python3
"""The table of texts, read as a reference: groups of functions and of constants.

The comment above a group has a heading, an introduction, and a line for each parameter; the first
comment of the table tells how they are written. Run as a program, it is checked that there is a
line for every parameter and a parameter for every line.
"""

import re
import sys
from dataclasses import dataclass, field
from pathlib import Path

TABLE = Path(__file__).resolve().parent.parent / "resources" / "en.lproj" / "Vornelix.strings"
FIRST_CONSTANT = 5000
EVERYWHERE = "Parameters"  # the group whose lines hold for all groups
REFUSES = "refuses"

TOKEN = re.compile(
    r'\s+|/\*\s*(?P<comment>.*?)\s*\*/|"(?P<id>\d+)" = "(?P<text>(?:[^"\\]|\\.)*)";', re.DOTALL
)
LINE = re.compile(r"   (?:(?P<function>XL_\w+) )?(?P<parameter>\w+): (?P<meaning>.*)")


@dataclass
class Entry:
    id: int
    prototype: str
    description: str

    @property
    def name(self):
        return self.prototype.partition(" (")[0]

    def parameters(self):
        """Each parameter's name, and whether it may be omitted."""
        _, _, listed = self.prototype.partition(" (")
        required, _, optional = listed.partition("{")
        return [(name, False) for name in re.findall(r"\w+", required)] + [
            (name, True) for name in re.findall(r"\w+", optional)
        ]

    def result(self):
        """What the function gives, as its description tells it."""
        if whole := re.match(r"(?:.*?\. )??Returns (.*?)\.(?: |$)", self.description):
            return whole[1]
        if part := re.search(r"\breturns ([^.;:]*)", self.description):
            return part[1]
        return "empty"


@dataclass
class Group:
    title: str
    introduction: str
    lines: dict = field(default_factory=dict)  # meanings, by function (or empty) and parameter
    entries: list = field(default_factory=list)

    @property
    def of_constants(self):
        return bool(self.entries) and self.entries[0].id >= FIRST_CONSTANT

    @property
    def slug(self):
        title = self.title.removeprefix("Constants: ").lower()
        return re.sub(r"[^a-z]+", "-", title).strip("-")


def read_comment(comment):
    paragraphs = comment.split("\n\n")
    lines = {}
    if len(paragraphs) > 1 and LINE.match(paragraphs[-1]):
        for line in paragraphs.pop().replace("\n      ", " ").split("\n"):
            match = LINE.match(line)
            if not match:
                sys.exit(f"{TABLE}: {line!r} is no line for a parameter")
            lines[match["function"] or "", match["parameter"]] = match["meaning"]
    introduction = " ".join(" ".join(paragraphs[1:]).split())
    return Group(paragraphs[0], introduction, lines)


def read_groups():
    """The groups that have entries with a description, and the lines that hold everywhere."""
    text = TABLE.read_text(encoding="utf-8")
    groups, position = [], 0
    while position < len(text):
        token = TOKEN.match(text, position)
        if not token:
            line = text.count("\n", 0, position) + 1
            sys.exit(f"{TABLE}: line {line} is neither an entry nor a comment")
        position = token.end()
        if token["comment"]:
            groups.append(read_comment(token["comment"]))
        elif token["id"]:
            prototype, bar, description = re.sub(r"\\(.)", r"\1", token["text"]).partition("|")
            if bar:
                groups[-1].entries.append(Entry(int(token["id"]), prototype, description))
    everywhere = next(group for group in groups if group.title == EVERYWHERE).lines
    return [group for group in groups if group.entries], everywhere


def meaning(group, everywhere, function, parameter):
    """The line for a parameter of a function, or nothing."""
    for lines, owner in ((group.lines, function), (group.lines, ""), (everywhere, "")):
        if (owner, parameter) in lines:
            return lines[owner, parameter]
    return None


def check():
    groups, everywhere = read_groups()
    problems, used = [], set()
    for group in groups:
        for entry in group.entries if not group.of_constants else []:
            for parameter, optional in entry.parameters():
                told = meaning(group, everywhere, entry.name, parameter)
                used |= {told}
                if told is None:
                    problems.append(f"{group.title}: no line for {entry.name} {parameter}")
                elif optional != bool(re.search(r"\bomitted\b", told)):
                    problems.append(f"{group.title}: {entry.name} {parameter}: optional or not?")
            used.add(group.lines.get((entry.name, REFUSES)))
        unused = [line for line in group.lines.items() if line[1] not in used]
        problems += [f"{group.title}: no parameter for {line}" for line in unused]
    unused = [line for line in everywhere.items() if line[1] not in used]
    problems += [f"{EVERYWHERE}: no parameter for {line}" for line in unused]
    print("\n".join(problems) or "every parameter has its line")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(check())
