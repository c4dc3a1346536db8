"""Settings of the documentation generator; the pages beside this file are completed by pages.py."""

import os
import sys

sys.path.insert(0, os.environ["MANUAL"])

project = "Vornelix"
version = release = os.environ["VERSION"]
extensions = ["extension"]
nitpicky = True
default_role = "xl:of"
highlight_language = "calculation"
language = "en"
smartquotes = False  # what is quoted is often to be typed

html_theme = "furo"
html_title = f"Vornelix {version}"
html_static_path = ["static"]
html_css_files = ["manual.css"]
html_copy_source = False
html_show_sphinx = False
html_show_copyright = False
# Summaries are fetched page by page, which a browser refuses for files; the results tell enough.
html_show_search_summary = False
html_search_scorer = os.path.join(os.path.dirname(__file__), "search_scorer.js")
html_domain_indices = False
html_use_index = False
