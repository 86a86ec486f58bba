#!/usr/bin/env python3
"""Compares the programs quoted in the documentation with the programs themselves.

usage: quotes_test.py path/to/source/tree

A quotation is a fenced block right below a line "<!-- from examples/NAME -->". Its lines stand in that file, one below the
other; the whole of them may be indented there.
"""
import pathlib
import re
import sys

QUOTATION = re.compile(r"<!-- from (\S+) -->\n```\w*\n(.*?)\n```", re.DOTALL)


def holds(lines, quoted):
    for start in range(len(lines) - len(quoted) + 1):
        indent = len(lines[start]) - len(lines[start].lstrip(" "))
        found = [line[indent:] if line[:indent].strip() == "" else line for line in lines[start:start + len(quoted)]]
        own = len(quoted[0]) - len(quoted[0].lstrip(" "))
        if found == [line[own:] for line in quoted]:
            return True
    return False


def main():
    if len(sys.argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    root = pathlib.Path(sys.argv[1])
    pages = sorted(root.glob("docs/*.md")) + sorted(root.glob("README.md"))
    count, wrong = 0, 0
    for page in pages:
        for name, block in QUOTATION.findall(page.read_text(encoding="utf-8")):
            count += 1
            if not holds((root / name).read_text(encoding="utf-8").split("\n"), block.split("\n")):
                print(f"{page.name} quotes what {name} does not hold:\n{block}\n")
                wrong += 1
    print(f"{count} quotations, {wrong} wrong")
    return 0 if count > 0 and wrong == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
