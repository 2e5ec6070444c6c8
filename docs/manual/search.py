"""The index of the search: functions, records, fields, and the sections of all pages with their texts."""
import json
import re
import xml.etree.ElementTree

from records import ROOT


def symbols(folder):
    """[name, what it is, address, description] from the XML of Doxygen."""
    found = {}
    for file in sorted(folder.joinpath("xml").glob("*.xml")):
        for compound in xml.etree.ElementTree.parse(file).getroot().iter("compounddef"):
            kind, owner = compound.get("kind"), (compound.findtext("compoundname") or "").removeprefix("oldtorvio::")
            if kind in ("struct", "class"):
                found[owner] = [owner, "record", compound.get("id") + ".html", said_of(compound)]
            for member in compound.iter("memberdef"):
                page, anchor = member.get("id").rsplit("_1", 1)
                name, what = member.findtext("name"), member.get("kind")
                if not said_of(member) or member.get("prot") == "private":
                    continue  # on no page
                if kind in ("struct", "class"):
                    found[f"{owner}::{name}"] = [name, f"field of {owner}" if what == "variable" else owner,
                                                 f"{page}.html#{anchor}", said_of(member)]
                elif kind == "group" or name not in found:
                    found[name] = [name, what if what != "define" else "constant", f"{page}.html#{anchor}",
                                   said_of(member)]
    return list(found.values())


def said_of(element):
    said = " ".join("".join(element.find(part).itertext()) for part in ("briefdescription", "detaileddescription"))
    return " ".join(said.split())[:400]


def sections(path, page, title, anchors):
    """[heading, title of the page, address, text] of each section of a page."""
    text = re.sub(r"<!--.*?-->", "", (ROOT / path).read_text(encoding="utf-8"))
    parts, is_code = [[title, page + ".html", []]], False
    for line in text.split("\n"):
        if re.match(r"^ *```", line):
            is_code = not is_code
            continue
        heading = None if is_code else re.match(r"^(#+) (.*)$", line)
        if heading and len(heading[1]) > 1:
            parts.append([heading[2].replace("`", ""), f"{page}.html#{page}-{anchors.of(heading[2])}", []])
        elif not heading:
            parts[-1][2].append(line)
    for heading, address, lines in parts:
        plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", " ".join(lines))
        yield [heading, title if heading != title else "page", address, " ".join(re.sub(r"[`*|$>#]+|-{3,}", " ", plain).split())]


def write(folder, entries):
    (folder / "html" / "search_index.js").write_text(
        "window.searchIndex = " + json.dumps(entries, ensure_ascii=False, separators=(",", ":")) + ";\n",
        encoding="utf-8")
