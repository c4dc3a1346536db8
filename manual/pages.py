#!/usr/bin/env python3
"""Writes the pages of the reference beside the pages written by hand, for Sphinx to build.

Everything that is said about a function comes from the table of texts, and the calculation at its
entry from examples/reference.
"""

import argparse
import re
import shutil
import sys
from pathlib import Path

import calculations
import pictures
import texts

SITE = Path(__file__).resolve().parent / "site"

# Beginnings of functions that are those of constants as well.
CLASSES = ("XL_AutoFilter", "XL_FilterColumn")
HANDLES = ("book", "sheet", "format", "font", "autoFilter", "filterColumn")


class Writer:
    def __init__(self, folder):
        self.folder = folder
        self.groups, self.everywhere = texts.read_groups()
        self.functions = [group for group in self.groups if not group.of_constants]
        self.constants = [group for group in self.groups if group.of_constants]
        self.names = {entry.name for group in self.groups for entry in group.entries}
        self.calculations = {}
        for path in sorted(calculations.REFERENCE.glob("*.calc")):
            _, self.calculations[path.stem] = calculations.read_calculations(path)

    def link(self, name):
        """A name leads to its entry, the beginning of names to their constants."""
        if name in self.names:
            return f":xl:of:`{name}`"
        counts = [
            sum(entry.name.startswith(name) for entry in group.entries) for group in self.constants
        ]
        if max(counts) == 0 or name in CLASSES:
            return f"``{name}``"
        return f":ref:`{name} <constants-{self.constants[counts.index(max(counts))].slug}>`"

    def prose(self, text):
        """Text for a page, its names as links."""
        pieces = re.split(r"\b(XL_\w+)", text)
        pieces[0::2] = [re.sub(r"([\\`*_|])", r"\\\1", piece) for piece in pieces[0::2]]
        # An escaped blank parts a link from what stands beside it, and does not show.
        pieces[1::2] = [f"\\ {self.link(name)}\\ " for name in pieces[1::2]]
        return "".join(pieces)

    def meanings(self, group, entry):
        names = [name for name, _ in entry.parameters()]
        return [texts.meaning(group, self.everywhere, entry.name, name) for name in names]

    def parameter_lines(self, group, entry):
        for (name, optional), told in zip(entry.parameters(), self.meanings(group, entry)):
            kind = " *(optional)*" if optional else ""
            yield f"      - ``{name}``{kind}: {self.prose(told)}"

    def error_lines(self, group, entry):
        names = [name for name, _ in entry.parameters()]
        told = self.meanings(group, entry)
        refused = []
        if any(re.search(r"\d to \d|position|\bat most\b|constant", text) for text in told[1:]):
            refused.append("a value that is out of range")
        if own := group.lines.get((entry.name, texts.REFUSES)):
            refused.append(own)
        if names and names[0] in HANDLES:
            if names[0] != "book":
                refused.append("an object that is no longer in its book")
            yield "      - 10: a handle is not known on this thread"
            yield "      - -2: a handle names something of another kind"
        if entry.name == "XL_Sheet_WriteError":
            yield "      - 10: the number is no error code either"
        if "data" in names:
            yield "      - 10: the container holds no data that can be used"
        if entry.name == "XL_Sheet_ReadCell":
            yield "      - 10300: the cell holds an error or cannot be read"
        elif refused:
            yield f"      - 1: the workbook refuses {self.prose('; '.join(refused))}"

    def formats_of(self, group, entry):
        if entry.name == "XL_XlCreateBook":
            return ".xls"
        if entry.name == "XL_XlCreateXMLBook":
            return ".xlsx"
        told = self.meanings(group, entry)
        refused = group.lines.get((entry.name, texts.REFUSES), "")
        differs = any(".xls book" in text for text in [entry.description, refused, *told[1:]])
        both = ".xlsx and .xls"
        return both + ", with the differences told above" if differs else both

    def calculation_of(self, group, name):
        """The calculation that shows a function, of the group's own file if that has one."""
        own = self.calculations[group.slug]
        for found in (own, *self.calculations.values()):
            for calculation in found:
                if name in calculation.names():
                    return calculation
        sys.exit(f"no calculation uses {name}")

    def function_lines(self, group, shown):
        for entry in group.entries:
            yield f".. xl:function:: {entry.prototype}".replace("\\", "\\\\")
            yield f"   :about: {entry.description}"
            yield ""
            yield f"   {self.prose(entry.description)}"
            yield ""
            parameters = list(self.parameter_lines(group, entry))
            if parameters:
                yield from ("   :Parameters:", *parameters)
            yield f"   :Result: {self.prose(entry.result())}"
            errors = list(self.error_lines(group, entry))
            if errors:
                yield from ("   :Errors:", *errors)
            if entry.parameters() or entry.name.startswith("XL_XlCreate"):
                yield f"   :Formats: {self.formats_of(group, entry)}"
            yield ""
            calculation = self.calculation_of(group, entry.name)
            opened = "" if calculation.line in shown.get(calculation.path, set()) else " open"
            shown.setdefault(calculation.path, set()).add(calculation.line)
            purpose = calculation.purpose.replace("&", "&amp;")
            yield from (
                "   .. raw:: html",
                "",
                f"      <details class='calculation'{opened}><summary>{purpose}</summary>",
                "",
                "   .. code-block:: calculation",
                "",
                *(f"      {line}" for line in calculation.shown().split("\n")),
                "",
                "   .. raw:: html",
                "",
                "      </details>",
                "",
            )

    def write_function_pages(self):
        room = self.folder / "reference"
        room.mkdir()
        for group in self.functions:
            lines = [group.title, "=" * len(group.title), ""]
            if group.introduction:
                lines += [self.prose(group.introduction), ""]
            lines += self.function_lines(group, {})
            (room / f"{group.slug}.rst").write_text("\n".join(lines) + "\n", encoding="utf-8")
        count = sum(len(group.entries) for group in self.functions)
        listed = "\n".join(f"   {group.slug}" for group in self.functions)
        index = (self.folder / "reference.rst.in").read_text(encoding="utf-8")
        (room / "index.rst").write_text(
            index.replace("@COUNT@", str(count)).replace("@PAGES@", listed), encoding="utf-8"
        )

    def constant_lines(self, group):
        title = group.title.removeprefix("Constants: ")
        title = title[0].upper() + title[1:]
        samples = pictures.samples_of(group)
        yield from (f".. _constants-{group.slug}:", "", title, "-" * len(title), "")
        if group.introduction:
            yield from (self.prose(group.introduction), "")
        yield from (".. list-table::", "   :header-rows: 1", "   :class: constants", "")
        yield "   * - Constant"
        yield "     - Value"
        if samples:
            yield "     - Looks like"
        yield "     - Meaning"
        for entry in group.entries:
            about, value = entry.description.rsplit(" Value ", 1)
            yield f"   * - :xl:define:`{entry.name} {about}`".replace("\\", "\\\\")
            yield f"     - {value.rstrip('.')}"
            if samples:
                yield f"     - .. image:: /pictures/{entry.name}.png"
                yield f"          :alt: {entry.name}"
            yield f"     - {self.prose(about)}"
        yield ""

    def write_constants_page(self):
        page = self.folder / "constants.rst"
        lines = [page.read_text(encoding="utf-8")]
        for group in self.constants:
            lines += self.constant_lines(group)
        page.write_text("\n".join(lines) + "\n", encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--xlcalc", default=calculations.XLCALC, help="the built development host")
    parser.add_argument("folder", type=Path, help="where the pages are written, anew")
    options = parser.parse_args()

    folder = options.folder.resolve()
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(SITE, folder)
    writer = Writer(folder)
    pictures.make(options.xlcalc, writer.constants, folder / "pictures")
    writer.write_function_pages()
    writer.write_constants_page()


if __name__ == "__main__":
    main()
