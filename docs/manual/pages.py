"""Turns the Markdown pages of the repository into pages of the manual.

Headings get the anchors that a code host gives them, and links lead to pages, headers and sources of the manual.
"""
import os
import re

from records import ROOT, slug
from text import escaped, target_of

# How the manual calls pages whose heading is meant for a code host.
TITLES = {"README.md": "Overview: build, use, embed", "HACKING.md": "For developers", "CHANGELOG.md": "Changelog"}
# Languages of code that Doxygen colours.
COLOURED = {"c": ".c", "cpp": ".cpp", "python": ".py", "csharp": ".cs", "js": ".js"}
TAB_NAMES = ["C", "C++", "Python", "C#", "Pascal", "JavaScript"]


def page_id(path):
    """Of a page, a path from the root of the repository: docs/formats/part.md is format_part."""
    name = path.removesuffix(".md").replace("-", "_").lower()
    return name.replace("docs/formats/", "format_").replace("docs/manual/", "").replace("docs/", "")


def source_id(path):
    return "source_" + re.sub(r"\W", "_", path)


def title_of(path):
    heading = re.search(r"^# (.*)$", (ROOT / path).read_text(encoding="utf-8"), re.M)[1]
    return TITLES.get(path, heading).replace("`", "")


class Anchors:
    """The anchors of the headings of one page: the second of the same name ends in -1."""

    def __init__(self):
        self.seen = {}

    def of(self, heading):
        name = slug(heading)
        count = self.seen.get(name, 0)
        self.seen[name] = count + 1
        return f"{name}-{count}" if count else name


def html(*tags):
    """Tags that Doxygen passes on as they are: it would close those that it knows at the end of a paragraph."""
    return ["", f"@htmlonly[block]{''.join(tags)}@endhtmlonly", ""]


class Page:
    def __init__(self, path, pages, sources):
        """`pages` are the paths of all pages; the sources that this one links to are added to `sources`."""
        self.path, self.pages, self.sources = path, pages, sources
        self.id = page_id(path)
        self.missing = []

    def link(self, text, target):
        if re.match(r"https?:", target):
            return f"[{text}]({target})"
        file, _, anchor = target.partition("#")
        path = os.path.normpath(os.path.join(os.path.dirname(self.path), file)) if file else self.path
        if path in self.pages:
            # On a code host the text is the name of the file.
            text = title_of(path) if text.strip("`") in (path, os.path.basename(path)) else text
            return self.reference(page_id(path) + ("-" + anchor if anchor else ""), text)
        if path == "docs/formats":
            return self.reference("section_file_formats", text)
        if path.startswith(("include/", "torvio/include/")) and path.endswith(".h"):
            name = path.removeprefix("torvio/").removeprefix("include/")
            return self.reference(name, text)
        if path.endswith(".svg") or path.startswith("docs/schema/"):
            name = os.path.basename(path)
            return f'<a href="{name}">{text.replace("`", "")}</a>' if (ROOT / path).is_file() else text
        if (ROOT / path).is_file() and path != "LICENSE":
            self.sources.add(path)
            return self.reference(source_id(path), text)
        if not (ROOT / path).exists():
            self.missing.append(f"{self.path}: {target} does not exist")
        return text

    @staticmethod
    def reference(target, text):
        text = " ".join(text.replace("`", "").split())
        return f'\\ref {target} "{text}"'

    def inline(self, text):
        """Links, and the names of functions and records in code."""
        def replaced(found):
            if found[1]:
                return f"![{found[2]}]({os.path.basename(found[3])})"
            if found[3]:
                return self.link(found[2], found[3])
            word = found[0].strip("`")
            target = target_of(word.removesuffix("()"))
            if target and self.id != "changelog":
                return self.reference(target, word)
            # To Doxygen, an apostrophe may end what a backquote began.
            return f"<code>{escaped(' '.join(word.split()))}</code>" if "'" in word else found[0]
        return re.sub(r"(!?)\[((?:`[^`]*`|[^\]\[`])*)\]\(([^)\s]+)\)|``.+?``|`[^`\n]+(?:\n[^`\n]+)?`", replaced, text)

    def converted(self):
        out, text = [], []

        def end_text():
            out.append(self.inline("\n".join(text)))
            text.clear()

        lines = (ROOT / self.path).read_text(encoding="utf-8").split("\n")
        fence, tabs, is_first, anchors = None, 0, True, Anchors()
        for number, line in enumerate(lines):
            opening = re.match(r"^( *)```(\w*)$", line)
            if fence is not None:
                out.append(line)
                fence = None if line.strip() == "```" else fence
                continue
            if opening:
                end_text()
                fence = opening[2]
                colour = COLOURED.get(fence)
                out.append(f"{opening[1]}```{{{colour}}}" if colour else f"{opening[1]}```{{.unparsed}}")
                continue
            heading = re.match(r"^(#+) (.*)$", line)
            tab = re.match(r"^\*\*(.+)\*\*$", line)
            if tab and tab[1] in TAB_NAMES:
                text += html("</div>" if tabs else '<div class="languages">',
                             f'<div class="language" data-name="{tab[1]}">') + [line]
                tabs += 1
                continue
            if tabs and heading:
                text += html("</div></div>")
                tabs = 0
            if re.match(r"^<!--.*-->$", line):
                text.append("")
                continue
            if heading:
                title = heading[2].replace("`", "")
                if is_first:
                    is_first = False
                    text.append(f"# {TITLES.get(self.path, title)} {{#{self.id}}}")
                else:
                    text.append(f"{heading[1]} {title} {{#{self.id}-{anchors.of(heading[2])}}}")
                continue
            block = "\n".join(text).rsplit("\n\n", 1)[-1]
            if text and text[-1].strip() and not re.match(r"^\n?(\d+\.|[-*]) ", block):
                # In a paragraph, a number at the beginning of a line begins no list.
                line = re.sub(r"^(\d+)\. ", r"\1\\. ", line)
            text.append(line)
        if tabs:
            text += html("</div></div>")
        end_text()
        return "\n".join(out)
