#!/usr/bin/env python3
"""Whether the source has the names by which the pages for its readers lead through it: what stands in backquotes and is a
word of code or a file's name.

    names_test.py ROOT"""

import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
FOLDERS = ("base", "bench", "cmake", "deploy", "interfaces", "platform", "services", "src", "tests", "tools")
PAGES = ("CONTRIBUTING.md", "docs/reading.md", "docs/structure.md")
NAME = re.compile(r"(?:[A-Za-z]\w*::)*~?([A-Za-z]\w{3,})(?:\.(?:h|cpp|idl|txt))?")

files = [path for folder in FOLDERS for path in (ROOT / folder).rglob("*") if path.is_file()]
files.append(ROOT / "CMakeLists.txt")
words = {path.stem for path in files}
for path in files:
    words.update(re.findall(r"\w+", path.read_text(errors="replace")))

missing, looked_at = [], 0
for page in PAGES:
    prose = re.sub(r"^\|.*", "", (ROOT / page).read_text(), flags=re.M)  # tables name targets, which CMake compares
    for span in re.findall(r"`([^`\n]+)`", prose):
        found = NAME.fullmatch(span.rstrip("()"))
        if found:
            looked_at += 1
            if found[1] not in words:
                missing.append(f"{page} names {span}, which the source does not have")

print(*missing, f"{looked_at} names looked at", sep="\n")
sys.exit(1 if missing or looked_at < 25 else 0)
