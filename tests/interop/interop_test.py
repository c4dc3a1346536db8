"""Workbooks that go from our engine to other programs and back.

The development host, named by the variable XLCALC, runs a calculation that writes or reads a
workbook; openpyxl and gnumeric's ssconvert read or write the same workbook on the other side.
"""

import base64
import csv
import decimal
import hashlib
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zipfile
import zlib
from xml.etree import ElementTree

try:
    import openpyxl
    from openpyxl.comments import Comment
    from openpyxl.drawing.spreadsheet_drawing import SpreadsheetDrawing
    from openpyxl.styles import Font, PatternFill
except ImportError:
    print("skipped: openpyxl is not there")
    sys.exit(77)

XLCALC = os.environ["XLCALC"]
EXAMPLES = pathlib.Path(__file__).parents[2] / "examples"

# Texts that trip writers: escapes, markup, white space, several scripts, beyond the basic plane.
TEXTS = [
    "Grüße & <b> 😀",
    "数据 данные αβγ",
    "  leading and trailing  ",
    "two\nlines",
    "_x000D_ as text",
    'say "hi"',
    "=1+1 is no formula",
    "x" * 32767,
]
NUMBERS = [0, 3.5, -0.25, 1 / 3, 1e20, 1.5e-7, 123456789012345, 2**53]


def run_script(folder, text):
    script = folder / "script.calc"
    script.write_text(text, encoding="utf-8")
    done = subprocess.run([XLCALC, "--strict", "run", str(script)], cwd=folder,
                          capture_output=True, text=True, timeout=120)
    if done.returncode != 0:
        raise AssertionError(f"{done.stdout}\n{done.stderr}")
    return done.stdout.splitlines()


def png(width, height):
    """A red picture."""
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data)))

    rows = (b"\0" + b"\xff\0\0" * width) * height
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def literal(text):
    escaped = text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "¶")
    return f'"{escaped}"'


class Interop(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def write_book(self, lines):
        run_script(self.folder, "\n".join(
            ["$book = XL_XlCreateXMLBook", '$sheet = XL_Book_AddSheet ( $book ; "Données 😀" )',
             *lines, 'XL_Book_Save ( $book ; "out.xlsx" )', "XL_Book_Release ( $book )"]))
        return self.folder / "out.xlsx"

    def write_values(self):
        lines = [f"XL_Sheet_WriteNum ( $sheet ; {row} ; 0 ; {decimal.Decimal(repr(number)):f} )"
                 for row, number in enumerate(NUMBERS)]
        lines += [f"XL_Sheet_WriteStr ( $sheet ; {row} ; 1 ; {literal(text)} )"
                  for row, text in enumerate(TEXTS)]
        lines += [
            "XL_Sheet_WriteBool ( $sheet ; 0 ; 2 ; 1 )",
            "XL_Sheet_WriteError ( $sheet ; 1 ; 2 ; 42 )",
            'XL_Sheet_WriteFormulaNum ( $sheet ; 2 ; 2 ; "SUM(A1:A2)*2" ; 7 )',
            'XL_Sheet_WriteFormulaStr ( $sheet ; 3 ; 2 ; "\\"a\\"&\\"b\\"" ; "ab" )',
            'XL_Sheet_WriteFormulaBool ( $sheet ; 4 ; 2 ; "1=1" ; 1 )',
            'XL_Sheet_WriteComment ( $sheet ; 0 ; 0 ; "hello" ; "me" )',
        ]
        return self.write_book(lines)

    def test_openpyxl_reads_what_we_write(self):
        path = self.write_values()
        formulas = openpyxl.load_workbook(path)
        values = openpyxl.load_workbook(path, data_only=True)
        self.assertEqual(formulas.sheetnames, ["Données 😀"])
        sheet, cached = formulas.active, values.active
        self.assertEqual([sheet.cell(i + 1, 1).value for i in range(len(NUMBERS))], NUMBERS)
        self.assertEqual([sheet.cell(i + 1, 2).value for i in range(len(TEXTS))], TEXTS)
        self.assertIs(sheet["C1"].value, True)
        self.assertEqual(sheet["C2"].value, "#N/A")
        self.assertEqual(sheet["C2"].data_type, "e")
        self.assertEqual([sheet[c].value for c in ("C3", "C4", "C5")],
                         ["=SUM(A1:A2)*2", '="a"&"b"', "=1=1"])
        self.assertEqual([cached[c].value for c in ("C3", "C4", "C5")], [7, "ab", True])
        self.assertEqual((sheet["A1"].comment.text, sheet["A1"].comment.author), ("hello", "me"))

    def test_openpyxl_reads_pages_and_views(self):
        path = self.write_book([
            "XL_Sheet_Split ( $sheet ; 2 ; 1 )",
            "XL_Sheet_SetTopLeftView ( $sheet ; 20 ; 0 )",
            "XL_Sheet_SetZoom ( $sheet ; 150 )",
            "XL_Sheet_SetDisplayGridlines ( $sheet ; 0 )",
            "XL_Sheet_SetTabColor ( $sheet ; 255 ; 128 )",
            "XL_Sheet_SetHorPageBreak ( $sheet ; 10 )",
            'XL_Sheet_SetProtect ( $sheet ; 1 ; "Größe 😀" ; 4 + 2048 )',
            "XL_Sheet_SetPrintFit ( $sheet ; 2 ; 0 )",
            "XL_Sheet_SetPaper ( $sheet ; 9 )",
            "XL_Sheet_SetMarginLeft ( $sheet ; 1.5 )",
            'XL_Sheet_SetHeader ( $sheet ; "&LLeft&R&D" ; 0.25 )',
        ])
        sheet = openpyxl.load_workbook(path).active
        pane = sheet.sheet_view.pane
        self.assertEqual((pane.xSplit, pane.ySplit, pane.topLeftCell, pane.activePane, pane.state),
                         (1, 2, "B21", "bottomRight", "frozen"))
        self.assertEqual([(one.pane, one.activeCell) for one in sheet.sheet_view.selection],
                         [("topRight", "B1"), ("bottomLeft", "A21"), ("bottomRight", "A1")])
        self.assertEqual((sheet.sheet_view.zoomScale, sheet.sheet_view.showGridLines), (150, False))
        self.assertEqual(sheet.sheet_properties.tabColor.rgb, "FFFF8000")
        self.assertEqual([(one.id, one.man, one.max) for one in sheet.row_breaks.brk],
                         [(10, True, 16383)])
        self.assertTrue(sheet.sheet_properties.pageSetUpPr.fitToPage)
        self.assertEqual((sheet.page_setup.fitToWidth, sheet.page_setup.fitToHeight,
                          sheet.page_setup.paperSize), (2, 0, 9))
        self.assertEqual((sheet.page_margins.left, sheet.page_margins.header), (1.5, 0.25))
        self.assertEqual((sheet.oddHeader.left.text, sheet.oddHeader.right.text), ("Left", "&D"))
        self.check_password(sheet.protection, "Größe 😀")
        self.assertEqual([getattr(sheet.protection, name) for name in
                          ("sheet", "formatCells", "sort", "selectLockedCells", "formatRows")],
                         [True, False, False, True, True])

    # What a drawing says, as openpyxl understands it: it shows pictures with a library of its own.
    def test_openpyxl_reads_pictures(self):
        (self.folder / "red.png").write_bytes(png(30, 20))
        path = self.write_book([
            '$picture = XL_Book_AddPicture2 ( $book ; Host_ReadFile ( "red.png" ) )',
            "XL_Sheet_SetCol ( $sheet ; 1 ; 1 ; 10 )",
            "XL_Sheet_SetRow ( $sheet ; 3 ; 30 )",
            "XL_Sheet_SetPicture ( $sheet ; 2 ; 1 ; $picture )",
            "XL_Sheet_SetPicture ( $sheet ; 2 ; 1 ; $picture ; 2 ; 80 ; 25 ; 1 )",
            "XL_Sheet_SetPicture2 ( $sheet ; 1 ; 1 ; $picture ; 60 ; -1 ; 3 ; 4 ; 2 )",
        ])
        with zipfile.ZipFile(path) as package:
            self.assertEqual(package.read("xl/media/image1.png"), png(30, 20))
            self.assertEqual([name for name in package.namelist() if "media" in name],
                             ["xl/media/image1.png"])
            root = ElementTree.fromstring(package.read("xl/drawings/drawing1.xml"))
        drawing = SpreadsheetDrawing.from_tree(root)
        pixel = 9525

        def corner(one):
            return one.col, one.colOff / pixel, one.row, one.rowOff / pixel

        both, one, fixed = drawing.twoCellAnchor, drawing.oneCellAnchor, drawing.absoluteAnchor
        self.assertEqual([(corner(a._from), corner(a.to)) for a in both],
                         [((1, 0, 2, 0), (1, 30, 3, 0))])
        self.assertEqual([(corner(a._from), a.ext.width / pixel, a.ext.height / pixel)
                          for a in one], [((2, 5, 3, 5), 60, 40)])
        self.assertEqual([(a.pos.x / pixel, a.pos.y / pixel, a.ext.width / pixel,
                           a.ext.height / pixel) for a in fixed], [(67, 24, 60, 40)])
        self.assertEqual({a.pic.blipFill.blip.embed for a in both + one + fixed}, {"rId1"})
        self.assertEqual(len({a.pic.nvPicPr.cNvPr.id for a in both + one + fixed}), 3)

    def check_password(self, protection, password):
        self.assertEqual(protection.algorithmName, "SHA-512")
        salt = base64.b64decode(protection.saltValue)
        self.assertEqual(len(salt), 16)
        digest = hashlib.sha512(salt + password.encode("utf-16-le")).digest()
        for number in range(protection.spinCount):
            digest = hashlib.sha512(digest + number.to_bytes(4, "little")).digest()
        self.assertEqual(base64.b64encode(digest).decode(), protection.hashValue)

    def test_openpyxl_reads_validations_of_every_type(self):
        types = ["None", "Whole", "Decimal", "List", "Date", "Time", "TextLength", "Custom"]
        operators = ["Between", "NotBetween", "Equal", "NotEqual", "Less", "LessOrEqual", "Greater",
                     "GreaterOrEqual"]
        styles = ["Stop", "Warning", "Information"]
        path = self.write_book([
            f"XL_Sheet_AddDataValidation ( $sheet ; XL_Validation{kind} ; "
            f"XL_Validation{operators[row]} ; {row} ; {row} ; 0 ; 1 ; \"{row + 1}\" ; \"A9\" ; "
            f"{row % 2} ; {row // 2 % 2} ; {row % 2} ; {row // 2 % 2} ; \"t{row}\" ; \"p <&{row}\" "
            f"; \"et{row}\" ; \"Größe¶{row}\" ; XL_ErrorStyle{styles[row % 3]} )"
            for row, kind in enumerate(types)])
        sheet = openpyxl.load_workbook(path).active
        with zipfile.ZipFile(path) as package:
            rules = package.read("xl/worksheets/sheet1.xml").decode().split("<dataValidation ")[1:]
        compared = ["whole", "decimal", "date", "time", "textLength"]
        names = ["between", "notBetween", "equal", "notEqual", "lessThan", "lessThanOrEqual",
                 "greaterThan", "greaterThanOrEqual"]
        for row, one in enumerate(sheet.data_validations.dataValidation):
            kind = types[row][0].lower() + types[row][1:]
            self.assertEqual(str(one.sqref), f"A{row + 1}:B{row + 1}")
            self.assertEqual(one.type or "none", kind)
            self.assertEqual(one.operator or "between", names[row] if kind in compared else "between")
            value = f'"{row + 1}"' if kind == "list" else str(row + 1)
            self.assertEqual(one.formula1, None if kind == "none" else value)
            self.assertEqual(one.formula2, "A9" if row == 1 else None)
            self.assertEqual((bool(one.allow_blank), bool(one.hide_drop_down)),
                             (bool(row % 2), bool(row // 2 % 2)))
            # openpyxl takes the other two as set where they are not written.
            self.assertEqual('showInputMessage="1"' in rules[row], bool(row % 2))
            self.assertEqual('showErrorMessage="1"' in rules[row], bool(row // 2 % 2))
            self.assertEqual((one.promptTitle, one.prompt, one.errorTitle, one.errorStyle or "stop"),
                             (f"t{row}", f"p <&{row}", f"et{row}", styles[row % 3].lower()))
            self.assertEqual(one.error, f"Größe\n{row}")

    @unittest.skipUnless(shutil.which("ssconvert"), "gnumeric is not there")
    def test_gnumeric_reads_what_we_write(self):
        path = self.write_values()
        target = self.folder / "out.csv"
        subprocess.run(["ssconvert", str(path), str(target)], check=True, capture_output=True,
                       timeout=120)
        with open(target, encoding="utf-8", newline="") as file:
            rows = list(csv.reader(file))
        self.assertEqual([float(rows[i][0]) for i in (1, 2, 4, 6)], [3.5, -0.25, 1e20,
                                                                     123456789012345])
        # It does not undo the escape of a literal _x000D_ (row 4), as the standard asks.
        self.assertEqual([rows[i][1] for i in (0, 1, 2, 3, 5, 6)], TEXTS[:4] + TEXTS[5:7])
        self.assertEqual([rows[i][2] for i in range(5)], ["TRUE", "#N/A", "7", "ab", "TRUE"])

    def test_packages_are_well_formed_and_complete(self):
        with zipfile.ZipFile(self.write_values()) as package:
            self.assertIsNone(package.testzip())
            names = package.namelist()
            self.assertEqual(names[0], "[Content_Types].xml")
            for name in names:
                if name.endswith((".xml", ".rels", ".vml")):
                    ElementTree.fromstring(package.read(name))
                if name.endswith(".rels"):
                    self.check_targets(package, name)

    def check_targets(self, package, rels):
        base = pathlib.PurePosixPath(rels).parent.parent
        for relation in ElementTree.fromstring(package.read(rels)):
            if relation.get("TargetMode") != "External":
                target = relation.get("Target")
                whole = target[1:] if target.startswith("/") else os.path.normpath(base / target)
                self.assertIn(str(whole), package.namelist())

    def read_cells(self, path, cells):
        calls = "\n".join(f"XL_Sheet_ReadCell ( $sheet ; {row} ; {column} )"
                          for row, column in cells)
        return run_script(self.folder, f"""
$book = XL_XlCreateXMLBook
$loaded = XL_Book_Load ( $book ; "{path.name}" )
$sheet = XL_Book_GetSheet ( $book ; 0 )
{calls}
XL_Book_Release ( $book )
""")

    def test_we_read_what_openpyxl_writes(self):
        book = openpyxl.Workbook()
        sheet = book.active
        for row, value in enumerate(["Grüße 😀", 12.5, True, "=SUM(1,2)", "  spaced "], start=1):
            sheet.cell(row, 1, value)
        sheet["A2"].font = Font(bold=True)
        sheet["A2"].fill = PatternFill("solid", fgColor="FFCC00")
        sheet["A1"].comment = Comment("note", "someone")
        path = self.folder / "in.xlsx"
        book.save(path)
        self.assertEqual(self.read_cells(path, [(0, 0), (1, 0), (2, 0), (4, 0)]),
                         ["Grüße 😀", "12.5", "1", "  spaced "])
        # Changing one cell keeps what the others had.
        run_script(self.folder, """
$book = XL_XlCreateXMLBook
$loaded = XL_Book_Load ( $book ; "in.xlsx" )
$sheet = XL_Book_GetSheet ( $book ; 0 )
XL_Sheet_WriteNum ( $sheet ; 9 ; 3 ; 42 )
XL_Book_Save ( $book ; "out.xlsx" )
XL_Book_Release ( $book )
""")
        after = openpyxl.load_workbook(self.folder / "out.xlsx").active
        self.assertEqual(after["D10"].value, 42)
        self.assertEqual(after["A4"].value, "=SUM(1,2)")
        self.assertTrue(after["A2"].font.bold)
        self.assertEqual(after["A2"].fill.fgColor.rgb, "00FFCC00")
        self.assertEqual(after["A1"].comment.text, "note")

    @unittest.skipUnless(shutil.which("ssconvert"), "gnumeric is not there")
    def test_we_read_what_gnumeric_writes(self):
        # Gnumeric opens our workbook and writes it anew in its own way.
        path = self.folder / "in.xlsx"
        subprocess.run(["ssconvert", str(self.write_values()), str(path)], check=True,
                       capture_output=True, timeout=120)
        self.assertEqual(self.read_cells(path, [(1, 0), (2, 0), (6, 0), (0, 1), (2, 1), (0, 2),
                                                (2, 2), (3, 2)]),
                         ["3.5", "-.25", "123456789012345", TEXTS[0], TEXTS[2], "1", "7", "ab"])

    def run_example(self, name, *settings, **environment):
        done = subprocess.run([XLCALC, "--strict", "run", str(EXAMPLES / f"{name}.calc"),
                               f"FILE={name}.xlsx", *settings], cwd=self.folder,
                              capture_output=True, text=True, timeout=120,
                              env={**os.environ, **environment})
        self.assertEqual(done.returncode, 0, done.stderr)
        return openpyxl.load_workbook(self.folder / f"{name}.xlsx"), done.stdout

    # The example makes a price list whose cells check what is typed.
    def test_the_price_list_says_what_may_be_typed(self):
        book, _ = self.run_example("prices")
        sheet = book["Prices"]
        rules = {str(one.sqref): one for one in sheet.data_validations.dataValidation}
        self.assertEqual({cells: (one.type, one.operator, one.formula1, one.formula2,
                                  one.allow_blank, one.errorStyle, bool(one.hide_drop_down))
                          for cells, one in rules.items()},
                         {"C2:C100": ("list", None, "Groups", None, False, None, False),
                          "D2:D100": ("list", None, '"small,medium,large"', None, False, None,
                                      False),
                          "E2:E100": ("decimal", None, "0.01", "9999.99", False, "warning", False),
                          "F2:F100": ("date", "greaterThanOrEqual", "46023", None, True, None,
                                      False),
                          "A2:A100": ("custom", None, "COUNTIF($A$2:$A$100,A2)=1", None, False,
                                      None, False)})
        size = rules["D2:D100"]
        self.assertEqual((size.promptTitle, size.prompt, size.errorTitle, size.error,
                          size.showInputMessage, size.showErrorMessage),
                         ("Size", "Pick one of the three sizes.", "No such size",
                          "Sizes are small, medium and large.", True, True))
        with zipfile.ZipFile(self.folder / "prices.xlsx") as package:
            self.assertIn(b'<ignoredErrors><ignoredError sqref="A2:A100" numberStoredAsText="1"/>',
                          package.read("xl/worksheets/sheet1.xml"))

    # The example makes a grouped, frozen, printable report, then loads it and inserts a row.
    def test_the_report_is_shaped_as_it_was_asked_for(self):
        book, _ = self.run_example("report")
        self.assertEqual(book.sheetnames, ["Contents", "Sales 2026"])
        sheet = book["Sales 2026"]
        self.assertEqual([str(one) for one in sheet.merged_cells.ranges], ["A1:D1"])
        self.assertEqual(sheet.row_dimensions[1].height, 30)
        self.assertEqual(sheet.freeze_panes, "A4")
        self.assertEqual(sheet.print_title_rows, "$1:$3")
        self.assertIn("$A$1:$D$56", sheet.print_area)
        self.assertEqual([one.id for one in sheet.row_breaks.brk], [30])
        self.assertEqual(sheet.page_setup.paperSize, 9)
        self.assertEqual(sheet.oddFooter.center.text, "Page &P of &N")
        self.assertEqual(sheet.oddHeader.right.text, "Printed &D")
        self.assertTrue(sheet.print_options.horizontalCentered)
        self.assertEqual(sheet.page_margins.left, 0.5)
        levels = [sheet.row_dimensions[row].outlineLevel for row in range(4, 18)]
        self.assertEqual(levels, [1] * 13 + [0])
        self.assertEqual(sheet["D17"].value, "=SUM(D4:D16)")
        self.assertEqual(sheet["D30"].value, "=SUM(D18:D29)")
        self.assertEqual({one.name: one.attr_text for one in book.defined_names.definedName},
                         {"North": "'Sales 2026'!$D$4:$D$16", "South": "'Sales 2026'!$D$18:$D$29",
                          "East": "'Sales 2026'!$D$31:$D$42",
                          "West": "'Sales 2026'!$D$44:$D$55"})
        self.assertGreater(sheet.column_dimensions["B"].width, 10)
        contents = book["Contents"]
        self.assertEqual(contents["A3"].hyperlink.location, "North")
        self.assertEqual(contents["A8"].hyperlink.target, "mailto:sales@example.org")
        self.assertEqual(contents.sheet_properties.tabColor.rgb, "FF006080")
        self.assertFalse(contents.sheet_view.showGridLines)

    # The example places pictures, then loads the file and inserts a row above them.
    def test_the_catalogue_shows_its_pictures(self):
        done = subprocess.run([XLCALC, "--strict", "run", str(EXAMPLES / "catalogue.calc"),
                               "FILE=out.xlsx", f"PICTURES={EXAMPLES / 'catalogue'}"],
                              cwd=self.folder, capture_output=True, text=True, timeout=120)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("The last one lies in row 4, 48 by 48 pixels", done.stdout)
        with zipfile.ZipFile(self.folder / "out.xlsx") as package:
            root = ElementTree.fromstring(package.read("xl/drawings/drawing1.xml"))
            pictures = {package.read(name) for name in package.namelist() if "media" in name}
        self.assertEqual([a._from.row for a in SpreadsheetDrawing.from_tree(root).oneCellAnchor],
                         [2, 3, 4])
        self.assertEqual(pictures, {path.read_bytes()
                                    for path in (EXAMPLES / "catalogue").iterdir()})


    # The example fills a template that carries a filter. A book whose handle the filter took over
    # keeps its memory until the process ends.
    def test_the_orders_are_filtered_by_their_template(self):
        book, told = self.run_example("orders", f"TEMPLATE={EXAMPLES / 'orders.xlsx'}",
                                      ASAN_OPTIONS="detect_leaks=0")
        sheet = book.active
        self.assertEqual(sheet.auto_filter.ref, "A1:E41")
        columns = {one.colId: one for one in sheet.auto_filter.filterColumn}
        self.assertEqual(columns[3].filters.filter, ["open", "overdue"])
        condition, = columns[4].customFilters.customFilter
        self.assertEqual((condition.operator, condition.val), ("greaterThanOrEqual", "250"))
        self.assertEqual(sheet.sheet_properties.filterMode, True)
        self.assertEqual(sheet["E43"].value, "=SUBTOTAL(109,E2:E41)")
        shown = [row for row in range(2, 42) if not sheet.row_dimensions[row].hidden]
        self.assertEqual(shown, [row for row in range(2, 42)
                                 if sheet.cell(row, 4).value.lower() in ("open", "overdue")
                                 and sheet.cell(row, 5).value >= 250])
        self.assertIn(f"Orders shown: {len(shown)} of 40", told)
        self.assertIn("Condition on the amount: 4 250 0  0", told)


if __name__ == "__main__":
    unittest.main()
