#!/usr/bin/env python3
"""Checks the pages of a static site: check_links.py FOLDER

Each link leads to a file of the site and, with a name behind "#", to a place in it. No page loads
anything from the network.
"""

import functools
import html.parser
import pathlib
import re
import sys
import urllib.parse

LOADED = {"script": "src", "img": "src", "link": "href", "iframe": "src", "object": "data", "source": "src"}


class Page(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.links, self.loaded, self.names = [], [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.names.update(values[name] for name in ("id", "name") if values.get(name))
        if tag == "a" and values.get("href"):
            self.links.append(values["href"])
        elif tag in LOADED and values.get(LOADED[tag]):
            self.loaded.append(values[LOADED[tag]])


@functools.lru_cache(maxsize=None)
def page_at(path):
    return Page(path.read_text(errors="replace"))


def fault_of(path, root, target, loaded):
    parts = urllib.parse.urlsplit(target)
    if parts.scheme in ("data", "javascript", "mailto"):
        return None
    if parts.scheme or parts.netloc:
        return "is loaded from the network" if loaded else None
    file = (path.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else path
    if file.is_dir():
        file /= "index.html"
    if not file.is_relative_to(root) or not file.exists():
        return "leads to no file"
    name = urllib.parse.unquote(parts.fragment)
    if name and not loaded and file.suffix == ".html" and name not in page_at(file).names:
        return "leads to no place in the page"
    return None


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    pages = sorted(root.rglob("*.html"))
    count, faults = 0, []
    for path in pages:
        page = page_at(path)
        for target, loaded in [*((link, False) for link in page.links), *((link, True) for link in page.loaded)]:
            count += 1
            if fault := fault_of(path, root, target, loaded):
                faults.append(f"{path.relative_to(root)}: {target} {fault}")
    for style in root.rglob("*.css"):
        for target in re.findall(r"url\(\s*[\"']?([^\"')]+)", style.read_text(errors="replace")):
            count += 1
            if fault := fault_of(style, root, target, True):
                faults.append(f"{style.relative_to(root)}: {target} {fault}")
    print("\n".join(sorted(set(faults))) or f"{len(pages)} pages, {count} links: no faults")
    return 1 if faults or not pages else 0


if __name__ == "__main__":
    sys.exit(main())
