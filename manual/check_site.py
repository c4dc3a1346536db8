#!/usr/bin/env python3
"""Looks for faults in the built site: links that lead nowhere, functions without an entry.

Where there is a browser, it also searches as a reader does, and opens every page on a
narrow screen.
"""

import argparse
import html.parser
import shutil
import subprocess
import sys
import tempfile
import urllib.parse
from pathlib import Path

import texts

NARROW = 400  # pixels

# What a reader looks for, and what has to be among the first results.
SEARCHES = {
    "WriteNum": "xl_sheet_writenum",
    "XL_ColorRed": "xl_colorred",
    "merge cells": "xl_sheet_setmerge",
    "freeze rows": "xl_sheet_split",
    "hide a sheet": "xl_sheet_sethidden",
    "border": "xl_format_setborder",
    "password": "xl_sheet_setprotect",
    "page number": "xl_sheet_setheader",
    "superscript": "xl_font_setscript",
    "drop": "xl_sheet_adddatavalidation",
}
FIRST_RESULTS = 6


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.ids, self.links = set(), set()
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name == "id":
                self.ids.add(value)
            elif name in ("href", "src") and value:
                self.links.add(value)


def dead_links(site):
    pages = {path: Page(path) for path in site.rglob("*.html")}
    for path, page in pages.items():
        for link in page.links:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc:
                continue
            name = urllib.parse.unquote(parts.path) or path.name
            target = (path.parent / name).resolve()
            if not target.exists():
                yield f"{path.name}: {link} leads nowhere"
            elif parts.fragment and target in pages and parts.fragment not in pages[target].ids:
                yield f"{path.name}: {link} leads to no place in the page"


def missing_entries(site):
    ids = set().union(*(Page(path).ids for path in site.rglob("*.html")))
    for group in texts.read_groups()[0]:
        for entry in group.entries:
            if entry.name.lower() not in ids:
                yield f"{entry.name} has no entry"


def shown_by(browser, url, profile):
    """What a page consists of after its scripts have run."""
    command = [browser, "--headless", "--no-sandbox", "--disable-gpu", "--disable-sync"]
    command += ["--no-first-run", "--disable-background-networking", "--disable-component-update"]
    command += ["--allow-file-access-from-files", f"--user-data-dir={profile}"]
    command += ["--virtual-time-budget=10000", "--dump-dom", url]
    ended = subprocess.run(command, capture_output=True, encoding="utf-8", timeout=120, check=True)
    return ended.stdout


def faults_of_search(site, browser, profile):
    for query, wanted in SEARCHES.items():
        url = f"{(site / 'search.html').as_uri()}?q={urllib.parse.quote_plus(query)}"
        _, _, results = shown_by(browser, url, profile).partition('<ul class="search">')
        first = results.split("<li")[1 : FIRST_RESULTS + 1]
        if not any(f'#{wanted}"' in result for result in first):
            yield f'a search for "{query}" does not find {wanted}: {[r[:120] for r in first]}'


FRAMES = """<!DOCTYPE html><body></body><script>
for (const page of {pages}) {{
  const frame = document.createElement("iframe");
  frame.width = {narrow};
  frame.src = page;
  frame.onload = () => {{
    const root = frame.contentDocument.documentElement;
    const fits = root.scrollWidth <= root.clientWidth;
    document.body.append(`[${{page}} ${{fits ? "fits" : root.scrollWidth}}]`);
    frame.remove();
  }};
  document.body.append(frame);
}}
</script>"""


def faults_of_width(site, browser, folder):
    pages = [path.as_uri() for path in sorted(site.rglob("*.html"))]
    frames = folder / "frames.html"
    frames.write_text(FRAMES.format(pages=pages, narrow=NARROW), encoding="utf-8")
    shown = shown_by(browser, frames.as_uri(), folder / "profile")
    for page in pages:
        width = shown.partition(f"[{page} ")[2].partition("]")[0]
        if width != "fits":
            yield f"{page} is {width or '?'} pixels wide on a screen of {NARROW}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("site", type=lambda name: Path(name).resolve())
    site = parser.parse_args().site

    problems = [*dead_links(site), *missing_entries(site)]
    browser = shutil.which("chromium")
    if browser:
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            problems += faults_of_search(site, browser, folder / "profile")
            problems += faults_of_width(site, browser, folder)
    looked = "links, entries, searches and narrow pages" if browser else "links and entries"
    print("\n".join(problems) or f"{looked} are right")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
