"""Pictures of what constants and calculations make: workbooks of our own, shown by LibreOffice.

The samples of an enumeration stand below one another on one sheet, between two black cells. On the
page that LibreOffice makes of it these mark the corners, so that each sample can be cut out.
"""

import shutil
import subprocess
from pathlib import Path

from PIL import Image, ImageChops

import calculations

RESOLUTION = 120  # dots per inch
MARK_WIDTH = 2  # in characters, of the columns beside the samples

FILL = "XL_Format_SetFillPattern ( $f ; {} ) & XL_Format_SetPatternForegroundColor ( $f ; {} )"
TEXT = 'XL_Sheet_WriteStr ( $s ; {row} ; 1 ; "{text}" ; $f )'
BLANK = "XL_Sheet_WriteBlank ( $s ; {row} ; 1 ; $f )"


class Kind:
    """How the constants of a group are shown: width in characters, height in points, statements."""

    def __init__(self, width, height, setter, cell, text=""):
        self.width, self.height = width, height
        self.setter, self.cell, self.text = setter, cell, text

    def statements(self, name, row):
        yield "$f = XL_Book_AddFormat ( $b )"
        yield "$n = XL_Book_AddFont ( $b )"
        yield "$x = XL_Format_SetFont ( $f ; $n )"
        yield f"$x = {self.setter.format(name)}"
        number = next((n for part, n in NUMBERS if part in name), 1234.5)
        yield f"$x = {self.cell.format(row=row, text=self.text, number=number)}"


# What shows a number format well, by a part of its name.
NUMBERS = [("Date", 46095.6), ("Time", 46095.6), ("Min", 0.0123456), ("Elapsed", 1.6)]
FRAMED = "XL_Format_SetBorder ( $f ; XL_BorderThin ) & "
NUMBER = "XL_Sheet_WriteNum ( $s ; {row} ; 1 ; {number} ; $f )"
KINDS = {
    "colours": Kind(8, 12, FILL.format("XL_FillSolid", "{}"), BLANK),
    "number-formats": Kind(18, 15, FRAMED + "XL_Format_SetNumFormat ( $f ; {} )", NUMBER),
    "horizontal-alignment": Kind(
        24, 30, FRAMED + "XL_Format_SetAlignH ( $f ; {} )", TEXT, "Green tea"
    ),
    "vertical-alignment": Kind(12, 48, FRAMED + "XL_Format_SetAlignV ( $f ; {} )", TEXT, "Tea"),
    "border-styles": Kind(12, 20, "XL_Format_SetBorder ( $f ; {} )", BLANK),
    "diagonal-lines": Kind(8, 24, FRAMED + "XL_Format_SetBorderDiagonal ( $f ; {} )", BLANK),
    "fill-patterns": Kind(12, 24, FRAMED + FILL.format("{}", "XL_ColorDarkBlue"), BLANK),
    "font-scripts": Kind(8, 18, "XL_Font_SetScript ( $n ; {} )", TEXT, "tea"),
    "underlines": Kind(12, 20, "XL_Font_SetUnderline ( $n ; {} )", TEXT, "Green tea"),
}


def samples_of(group):
    return KINDS.get(group.slug)


def row_of(number):
    """The row of a sample, or of the second mark; between two of them a row is left empty."""
    return 2 * number + 2


def pixels(width):
    """The width of a column on a screen, of which only the ratio to others counts."""
    return 7 * width + 5


def sample_script(group, path):
    """A script that writes the samples of a group into a workbook."""
    kind, last = KINDS[group.slug], row_of(len(group.entries))
    yield "$b = XL_XlCreateXMLBook"
    yield f'$s = XL_Book_AddSheet ( $b ; "{group.slug}" )'
    for column, width in enumerate((MARK_WIDTH, kind.width, MARK_WIDTH)):
        yield f"$x = XL_Sheet_SetCol ( $s ; {column} ; {column} ; {width} )"
    yield "$mark = XL_Book_AddFormat ( $b )"
    yield f"$x = {FILL.format('XL_FillSolid', 'XL_ColorBlack').replace('$f', '$mark')}"
    for row in range(last + 1):
        yield f"$x = XL_Sheet_SetRow ( $s ; {row} ; {kind.height} )"
    # Not blank: what a sheet has beyond its last value is not printed.
    yield '$x = XL_Sheet_WriteStr ( $s ; 0 ; 0 ; "." ; $mark )'
    yield f'$x = XL_Sheet_WriteStr ( $s ; {last} ; 2 ; "." ; $mark )'
    for number, entry in enumerate(group.entries):
        yield from kind.statements(entry.name, row_of(number))
    yield "$x = XL_Sheet_SetPaper ( $s ; XL_PaperA2 ) & XL_Sheet_SetPrintFit ( $s ; 1 ; 1 )"
    yield f'$x = XL_Book_Save ( $b ; "{path}" )'
    yield "XL_Book_Release ( $b )"


def page(pages, name):
    return Image.open(pages / f"{name}.png").convert("RGB")


def whole(page):
    """The part of a page that is not white."""
    white = Image.new("RGB", page.size, "white")
    return page.crop(ImageChops.difference(page, white).getbbox())


def cut_samples(group, page, folder):
    kind, rows = KINDS[group.slug], row_of(len(group.entries)) + 1
    page = whole(page)
    scale = page.width / (pixels(kind.width) + 2 * pixels(MARK_WIDTH))
    left, right = pixels(MARK_WIDTH) * scale, (pixels(MARK_WIDTH) + pixels(kind.width)) * scale
    height, around = page.height / rows, 3
    for number, entry in enumerate(group.entries):
        top = row_of(number) * height
        box = (left - around, top - around, right + around, top + height + around)
        page.crop([round(edge) for edge in box]).save(folder / f"{entry.name}.png")


def run_script(xlcalc, script, text, *settings):
    script.write_text(text, encoding="utf-8")
    command = [xlcalc, "--strict", "run", script, *settings]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def write_guides(xlcalc, folder):
    """The workbooks that the guides write, by the name of the picture."""
    books = {}
    for path in sorted(calculations.GUIDES.glob("*.calc")):
        work = folder / path.stem
        work.mkdir()
        _, found = calculations.read_calculations(path)
        for calculation in found:
            calculations.evaluate(calculation, xlcalc, work)
        for book in sorted((work / "files").glob("*.xls*")):
            kind = "-xls" if book.suffix == ".xls" else ""
            books[f"{path.stem}-{book.stem}{kind}"] = book
    return books


def for_print(xlcalc, book, copy, folder):
    """A copy of a workbook that is printed as it looks on the screen."""
    create = "XL_XlCreateBook" if book.suffix == ".xls" else "XL_XlCreateXMLBook"
    text = f"""
$b = {create}
$x = XL_Book_Load ( $b ; $BOOK )
$x = While (
  [ i = 0 ] ; i < XL_Book_SheetCount ( $b ) ;
  [ s = XL_Book_GetSheet ( $b ; i ) ;
    x = List ( XL_Sheet_SetPrintGridlines ( s ) ; XL_Sheet_SetPrintRowCol ( s ) ;
      XL_Sheet_SetLandscape ( s ) ; XL_Sheet_SetPrintFit ( s ; 1 ; 1 ) ;
      XL_Sheet_SetHeader ( s ; "" ) ; XL_Sheet_SetFooter ( s ; "" ) ) ;
    i = i + 1 ] ;
  i
)
$x = XL_Book_Save ( $b ; $COPY )
"""
    run_script(xlcalc, folder / "print.calc", text, f"BOOK={book}", f"COPY={copy}")


def make(xlcalc, groups, folder):
    """Writes a picture for each constant that can be seen and for each workbook of the guides."""
    folder.mkdir()
    work = folder.parent.parent / "pictures"
    shutil.rmtree(work, ignore_errors=True)
    books, pages = work / "books", work / "pages"
    for room in (books, pages, work / "guides"):
        room.mkdir(parents=True)
    seen = [group for group in groups if samples_of(group)]
    for group in seen:
        script = "\n".join(sample_script(group, books / f"{group.slug}.xlsx"))
        run_script(xlcalc, work / "samples.calc", script)
    guides = write_guides(xlcalc, work / "guides")
    for name, book in guides.items():
        for_print(xlcalc, book, books / f"{name}{book.suffix}", work)
    subprocess.run(
        ["soffice", "--headless", f"-env:UserInstallation=file://{work / 'profile'}"]
        + ["--convert-to", "pdf", "--outdir", pages, *sorted(books.iterdir())],
        check=True,
        timeout=600,
        stdout=subprocess.DEVNULL,
    )
    for path in sorted(pages.glob("*.pdf")):
        subprocess.run(
            ["pdftoppm", "-png", "-singlefile", "-r", str(RESOLUTION), path, path.with_suffix("")],
            check=True,
        )
    for group in seen:
        cut_samples(group, page(pages, group.slug), folder)
    for name in guides:
        whole(page(pages, name)).save(folder / f"{name}.png")
