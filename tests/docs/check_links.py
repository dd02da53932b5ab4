#!/usr/bin/env python3
"""Checks that every relative link in the Markdown files of the repository has a target.

    check_links.py FOLDER

The target is a file or folder; if the link has a fragment, also a heading of that file, named as by
common Markdown viewers.
"""

import pathlib
import re
import sys

LINK = re.compile(r"\[[^\]]*\]\(([^()\s]+)\)")
FENCE = re.compile(r"^```.*?^```$", re.DOTALL | re.MULTILINE)
HEADING = re.compile(r"^#{1,6} (.*)$", re.MULTILINE)


def prose(path):
    return FENCE.sub("", path.read_text("utf-8"))


def anchors(path):
    found = set()
    for heading in HEADING.findall(prose(path)):
        anchor = re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
        number = 0
        while (anchor if number == 0 else f"{anchor}-{number}") in found:
            number += 1
        found.add(anchor if number == 0 else f"{anchor}-{number}")
    return found


def leads_nowhere(link, document):
    """Returns the reason, or None."""
    path, _, fragment = link.partition("#")
    target = document.parent / path if path else document
    if not target.exists():
        return "no such file"
    if fragment and fragment not in anchors(target):
        return "no such heading"
    return None


def main():
    root = pathlib.Path(sys.argv[1])
    folders = [
        entry
        for entry in root.iterdir()
        if entry.is_dir() and entry.name != "build" and not (entry / "CMakeCache.txt").exists()
    ]
    documents = sorted(root.glob("*.md"))
    documents += [path for folder in sorted(folders) for path in sorted(folder.rglob("*.md"))]
    links = failures = 0
    for document in documents:
        for link in LINK.findall(prose(document)):
            if re.match(r"[a-z]+:", link):
                continue  # external links are not checked
            links += 1
            reason = leads_nowhere(link, document)
            if reason:
                failures += 1
                print(f"{document.relative_to(root)}: {link}: {reason}")
    print(f"{len(documents)} documents, {links} links, {failures} lead nowhere")
    return 0 if links > 0 and failures == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
