"""Checks links.

links.py markdown SOURCE_FOLDER    links of the pages as a code host shows them: files, folders and headings
links.py html FOLDER               links and anchors of the HTML in a folder; links to other sites are only counted
"""
import collections
import html.parser
import pathlib
import re
import sys
import urllib.parse


def headings(text):
    """The anchors that a code host gives to headings."""
    seen, anchors = collections.Counter(), set()
    for heading in re.findall(r"^#+ (.*?)\s*$", re.sub(r"(?ms)^ *```.*?^ *```$", "", text), re.M):
        name = re.sub(r"[^\w\- ]", "", re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).lower()).replace(" ", "-")
        anchors.add(f"{name}-{seen[name]}" if seen[name] else name)
        seen[name] += 1
    return anchors


def check_markdown(root):
    wrong, count, outside = [], 0, set()
    pages = [*root.glob("*.md"), *(root / "docs").rglob("*.md")]
    anchors = {page.resolve(): headings(page.read_text(encoding="utf-8")) for page in pages}
    for page in pages:
        text = re.sub(r"(?ms)^ *```.*?^ *```$", "", page.read_text(encoding="utf-8"))
        text = re.sub(r"`[^`]*`", lambda code: code[0].replace("](", "] ("), text)
        for target in re.findall(r"\]\(([^)\s]+)\)", text):
            count += 1
            if re.match(r"\w+:", target):
                outside.add(target)
                continue
            file, _, anchor = target.partition("#")
            path = (page.parent / urllib.parse.unquote(file)).resolve() if file else page.resolve()
            if not path.exists() or root.resolve() not in [path, *path.parents]:
                wrong.append(f"{page.relative_to(root)}: there is no {target}")
            elif anchor and anchor not in anchors.get(path, ()):
                wrong.append(f"{page.relative_to(root)}: there is no heading {target}")
    return wrong, count, outside


class Links(html.parser.HTMLParser):
    """The links and anchors of a page."""

    def __init__(self, text):
        super().__init__()
        self.links, self.anchors = set(), set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src", "data") and value:
                self.links.add(value)
            if name == "id" or (tag == "a" and name == "name"):
                self.anchors.add(value)


def check_html(folder):
    wrong, count, outside = [], 0, set()
    pages = {path.resolve(): Links(path.read_text(encoding="utf-8")) for path in folder.rglob("*.html")}
    # The tree at the left and the search take their links from scripts.
    tree = set()
    for script in folder.glob("*.js"):
        tree |= set(re.findall(r'"([\w-]+\.html(?:#[^"]+)?)"', script.read_text(encoding="utf-8")))
    everything = [(path, link) for path, page in pages.items() for link in page.links]
    for page, link in everything + [((folder / "index.html").resolve(), link) for link in sorted(tree)]:
        count += 1
        if re.match(r"(https?|mailto):", link):
            outside.add(link)
            continue
        if link.startswith("javascript:"):
            continue
        file, _, anchor = link.partition("#")
        path = (page.parent / urllib.parse.unquote(file)).resolve() if file else page
        if not path.exists():
            wrong.append(f"{page.name}: there is no {link}")
        elif anchor and path in pages and urllib.parse.unquote(anchor) not in pages[path].anchors:
            wrong.append(f"{page.name}: there is no anchor {link}")
    return wrong, count, outside


kind, folder = sys.argv[1], pathlib.Path(sys.argv[2])
wrong, count, outside = {"markdown": check_markdown, "html": check_html}[kind](folder)
if count < 50:
    wrong.append(f"only {count} links: the pattern does not match any more")
print("\n".join(wrong) or f"{count} links; links to other sites, which are not checked: {', '.join(sorted(outside)) or 'none'}")
sys.exit(1 if wrong else 0)
