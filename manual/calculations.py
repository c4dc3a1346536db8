#!/usr/bin/env python3
"""Calculations with their results beside them, and the run that holds the two together.

A file of calculations begins with a comment on its subject. Then come calculations, parted by blank
lines, each of which stands for itself: a comment that says what it is for, its statements, and
below a statement that prints something what it prints, in lines that begin with an arrow:

    // Write a number and read it back
    $book = XL_XlCreateXMLBook
    $sheet = XL_Book_AddSheet ( $book ; "Prices" )
    XL_Sheet_WriteNum ( $sheet ; 0 ; 0 ; 4.95 )
    // → 1

$DIR is a folder, empty before the first calculation of a file, $EXAMPLES the one with the examples.
A call that fails is told by the host beside the results; here it has to be meant: the calculation
prints its code or reason.

Run as a program, every calculation is evaluated and compared, and every function of the plug-in has
to occur. With --write what is printed is put in place of what stands there: for new calculations.
"""

import argparse
import re
import shlex
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
EXAMPLES = ROOT / "examples"
REFERENCE = EXAMPLES / "reference"
GUIDES = EXAMPLES / "guides"
XLCALC = ROOT / "build" / "bin" / "xlcalc"

ARROW = "// →"
MARK = "--- the statement ends here ---"
# What a line holds beside code: texts, whose brackets do not count, and comments.
NOT_CODE = re.compile(r'"(?:[^"\\]|\\.)*"|//.*')


@dataclass
class Statement:
    text: str
    results: list = field(default_factory=list)


@dataclass
class Calculation:
    path: Path
    line: int
    purpose: str
    statements: list

    def shown(self):
        """The calculation as a reader sees it, results included."""
        lines = []
        for statement in self.statements:
            lines.append(statement.text)
            lines += [f"{ARROW} {result}".rstrip() for result in statement.results]
        return "\n".join(lines)

    def names(self):
        code = NOT_CODE.sub('""', "\n".join(statement.text for statement in self.statements))
        return set(re.findall(r"\bXL_\w+", code))


def read_statements(lines):
    statements, pending, depth = [], [], 0
    for line in lines:
        if line.startswith(ARROW):
            statements[-1].results.append(line[len(ARROW) :].removeprefix(" "))
            continue
        pending.append(line)
        code = NOT_CODE.sub("", line)
        depth += sum(code.count(c) for c in "([") - sum(code.count(c) for c in ")]")
        if depth == 0 and code.strip():
            statements.append(Statement("\n".join(pending)))
            pending = []
    if pending:
        sys.exit(f"no statement ends after: {pending[0]}")
    return statements


def read_calculations(path):
    """The introduction of a file and its calculations."""
    introduction, calculations, line = "", [], 1
    for paragraph in path.read_text(encoding="utf-8").rstrip("\n").split("\n\n"):
        lines = paragraph.split("\n")
        comment = 0
        while comment < len(lines) and re.match(r"//(?! →)", lines[comment]):
            comment += 1
        purpose = " ".join(text.removeprefix("//").strip() for text in lines[:comment])
        if comment == len(lines):
            introduction = purpose
        else:
            statements = read_statements(lines[comment:])
            calculations.append(Calculation(path, line, purpose, statements))
        line += len(lines) + 1
    return introduction, calculations


def shorten(text, work):
    """What is printed, without the folders of this run."""
    return text.replace(str(work), "$DIR").replace(str(EXAMPLES), "$EXAMPLES")


def evaluate(calculation, xlcalc, folder):
    """What each statement prints, and the calls that failed without being meant to."""
    script = folder / "script.calc"
    text = "".join(f'{statement.text}\n"{MARK}"\n' for statement in calculation.statements)
    script.write_text(text, encoding="utf-8")
    work = folder / "files"
    work.mkdir(exist_ok=True)
    ended = subprocess.run(
        [*shlex.split(str(xlcalc)), "run", script, f"DIR={work}", f"EXAMPLES={EXAMPLES}"],
        capture_output=True,
        encoding="utf-8",
    )
    # Below each problem the statement is repeated, further in.
    told = [line for line in shorten(ended.stderr, work).splitlines() if line[:1].strip()]
    outputs = [output.strip("\n") for output in shorten(ended.stdout, work).split(MARK)[:-1]]
    results = [output.split("\n") if output else [] for output in outputs]
    shown = [line for result in results for line in result]
    unmeant = [
        problem
        for problem in told
        if not (match := re.search(r" failed with code (-?\d+)(?:: (.*))?", problem))
        or not any(line == match[1] or (match[2] and match[2] in line) for line in shown)
    ]
    return results, unmeant


def check(calculation, xlcalc, folder):
    """What is wrong with a calculation, which then has what it prints."""
    results, problems = evaluate(calculation, xlcalc, folder)
    for number, statement in enumerate(calculation.statements):
        result = results[number] if number < len(results) else ["(not reached)"]
        if result != statement.results:
            wanted = " ¶ ".join(statement.results)
            problems.append(f"{statement.text}\n  prints {' ¶ '.join(result)}\n  not    {wanted}")
        statement.results = result
    return problems


def write(path, calculations):
    text = path.read_text(encoding="utf-8").split("\n\n")
    first = len(text) - len(calculations)
    for number, calculation in enumerate(calculations):
        lines = text[first + number].rstrip("\n").split("\n")
        comment = next(i for i, line in enumerate(lines) if not line.startswith("//"))
        text[first + number] = "\n".join(lines[:comment]) + "\n" + calculation.shown()
    path.write_text("\n\n".join(text).rstrip("\n") + "\n", encoding="utf-8")


def registered_names(xlcalc):
    command = [*shlex.split(str(xlcalc)), "functions"]
    listed = subprocess.run(command, check=True, capture_output=True, encoding="utf-8")
    return {line.split(" ")[0] for line in listed.stdout.splitlines() if line[:1].strip()}


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--xlcalc", default=XLCALC, help="the development host's command")
    parser.add_argument("--write", action="store_true", help="write what is printed into the files")
    parser.add_argument("files", nargs="*", type=Path, help="all files, if none are named")
    options = parser.parse_args()

    paths = options.files or sorted(REFERENCE.glob("*.calc")) + sorted(GUIDES.glob("*.calc"))
    problems, used = [], set()
    for path in paths:
        _, calculations = read_calculations(path)
        with tempfile.TemporaryDirectory() as folder:
            for calculation in calculations:
                used |= calculation.names() if path.parent == REFERENCE else set()
                told = check(calculation, options.xlcalc, Path(folder))
                problems += [f"{path}:{calculation.line}: {problem}" for problem in told]
        if options.write:
            write(path, calculations)
    if not options.files:
        missing = registered_names(options.xlcalc) - used
        problems += [f"{name} occurs in no calculation of {REFERENCE}" for name in sorted(missing)]
    print("\n".join(problems) or f"{len(paths)} files of calculations print what they say")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
