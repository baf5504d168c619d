"""Writes an index of the C++ reference, so that the search of the site finds its classes and
operations. Each entry is a link to the pages of Doxygen."""

import re
import xml.etree.ElementTree as ElementTree

SKIPPED = ("friend",)


def text_of(element):
    return " ".join("".join(element.itertext()).split()) if element is not None else ""


def escaped(text):
    return text.replace("<", "&lt;").replace("|", "\\|").replace("*", "\\*").replace("_", "\\_")


def link_to(identifier):
    """The page and the place in it that Doxygen made for a compound or a member."""
    page, _, place = identifier.rpartition("_1") if re.search(r"_1[a-z0-9]{30,}$", identifier) else ("", "", "")
    return f"{page}.html#{place}" if page else f"{identifier}.html"


def anchor(identifier, text):
    """A link that Sphinx does not follow: Doxygen makes these pages beside it."""
    return f'<a class="reference external" href="../reference/{link_to(identifier)}">{text}</a>'


def members(compound):
    for member in compound.iter("memberdef"):
        if member.get("prot") == "public" and member.get("kind") not in SKIPPED:
            yield member


def entries(compound):
    seen = set()
    for member in members(compound):
        name = text_of(member.find("name"))
        if name in seen or name.startswith("~") or name.startswith("operator"):
            continue
        seen.add(name)
        brief = escaped(text_of(member.find("briefdescription")))
        yield f"- {anchor(member.get('id'), f'`{name}`')}: {brief}"


def write_pages(xml, target):
    target.mkdir(parents=True)
    read = lambda name: ElementTree.parse(xml / f"{name}.xml").getroot().find("compounddef")
    names = []
    index = ElementTree.parse(xml / "index.xml").getroot()
    for group in (entry.get("refid") for entry in index if entry.get("kind") == "group"):
        compound = read(group)
        inner = [read(entry.get("refid")) for entry in compound.findall("innerclass")]
        if not inner and not list(members(compound)):
            continue
        title = text_of(compound.find("title"))
        page = [f"# {title}", "", escaped(text_of(compound.find("briefdescription"))), "",
                anchor(group, "All details"), ""]
        page += entries(compound)
        # A declaration that only announces a class has no page.
        for part in (part for part in inner if text_of(part.find("briefdescription"))):
            name = text_of(part.find("compoundname"))
            page += ["", f"## {escaped(name)}", "", escaped(text_of(part.find("briefdescription"))), "",
                     anchor(part.get("id"), "All details"), "", *entries(part)]
        (target / f"{group}.md").write_text("\n".join(page) + "\n")
        names.append(group)
    start = ["# C++ reference", "",
             "Every class and operation of the installed headers, by family. The names lead to the",
             f"{anchor('index', 'complete reference')}, which has its own search.", "",
             "```{toctree}", *names, "```", ""]
    (target / "index.md").write_text("\n".join(start))
