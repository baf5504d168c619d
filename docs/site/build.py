#!/usr/bin/env python3
"""Builds the site: build.py DOXYFILE MAN_PAGES FOLDER

DOXYFILE makes the C++ reference in FOLDER/html/reference, MAN_PAGES holds the manual pages. The
result is FOLDER/html. Fails for any warning, and for a link that leads nowhere.
"""

import pathlib
import re
import shutil
import subprocess
import sys

sys.dont_write_bytecode = True  # leaves nothing in the source tree
import cpp_index  # noqa: E402
import man_pages  # noqa: E402

SITE = pathlib.Path(__file__).resolve().parent
DOCS = SITE.parent
ROOT = DOCS.parent
# Debian's furo loads this style from the root of a web server.
NORMALIZE = "/javascript/normalize.css/normalize.css"
LINK = re.compile(r"(\]\()\.\./([^)\s#]+)(\))")


def stage(source):
    """Copies the guides. Files of the source tree that they name are added as files to download."""
    source.mkdir(parents=True)
    for page in [*DOCS.glob("*.md"), *(DOCS / "decisions").glob("*.md")]:
        target = source / page.relative_to(DOCS)
        target.parent.mkdir(exist_ok=True)
        text = page.read_text()
        if page.parent == DOCS:
            text = LINK.sub(lambda link: download(source, link), text)
        target.write_text(text)
    with open(source / "decisions" / "README.md", "a", encoding="utf-8") as index:
        index.write("\n```{toctree}\n:hidden:\n:glob:\n0*\n```\n")
    shutil.copytree(DOCS / "images", source / "images", ignore=shutil.ignore_patterns("*.py"))
    shutil.copy(SITE / "index.md", source)
    shutil.copy(SITE / "conf.py", source)
    (source / "_static").mkdir()
    shutil.copy(SITE / "site.css", source / "_static")


def download(source, link):
    target = source / "files" / link[2]
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copy(ROOT / link[2], target)
    return f"{link[1]}{target.relative_to(source)}{link[3]}"


def keep_style(static):
    """Puts the style that furo loads from elsewhere into the site."""
    for style in (static / "styles").glob("*.css"):
        text = style.read_text()
        if NORMALIZE in text:
            shutil.copy(f"/usr/share{NORMALIZE}", static / "styles" / "normalize.css")
            style.write_text(text.replace(NORMALIZE, "normalize.css"))


def run(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode:
        sys.exit(f"{done.stdout}\nsite: {pathlib.Path(command[0]).name} failed")


def main():
    doxyfile, manual, folder = (pathlib.Path(argument) for argument in sys.argv[1:4])
    source, html = folder / "source", folder / "html"
    for old in (source, html, folder / "xml", folder / "doctrees"):
        shutil.rmtree(old, ignore_errors=True)
    folder.mkdir(parents=True, exist_ok=True)
    stage(source)
    run("doxygen", str(doxyfile))
    man_pages.write_pages(manual, source / "man")
    cpp_index.write_pages(folder / "xml", source / "cpp")
    # The pages of Doxygen are no part of what Sphinx knows, so check_links.py checks links to them.
    run("sphinx-build", "-q", "-W", "--keep-going", "-b", "html", "-d", str(folder / "doctrees"), str(source),
        str(html))
    keep_style(html / "_static")
    shutil.move(folder / "reference", html / "reference")
    run(sys.executable, str(SITE / "check_links.py"), str(html))
    print(f"the site is {html / 'index.html'}")


if __name__ == "__main__":
    main()
