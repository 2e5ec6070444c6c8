"""Turns the plain text of a header comment into text for Doxygen."""
import json
import re

from records import HEADERS, ROOT

FUNCTIONS = [function["name"] for library in
             json.loads((ROOT / "bindings" / "functions.json").read_text(encoding="utf-8"))["libraries"]
             for function in library["functions"]]
RECORDS = re.findall(r"^(?:struct|class) (\w+)", "\n".join(path.read_text(encoding="utf-8")
                                                         for path in sorted(HEADERS.glob("*.h"))), re.M)
STRUCTS = ["MachineInformation", "torvio_buffer", "torvio_error", "torvio_input"]
FILES = ["OldTorvIO.h", "torvio.h"] + [f"OldTorvIO/{path.name}" for path in sorted(HEADERS.glob("*.h"))]


def target_of(word):
    """What a word of code refers to in the manual, or None."""
    if word in FUNCTIONS or word in STRUCTS:
        return word
    if word in RECORDS:
        return "oldtorvio::" + word
    return word if word in FILES else None


def escaped(text):
    """Text in which nothing is a command, a tag or a mark of Markdown."""
    text = re.sub(r"([\\@&<>#*_$`~|\[\]])", r"\\\1", text)
    return re.sub(r"--", r"\\--", text).replace("%", r"\%").replace('"', "&quot;").replace("\\_", "_")


# One-word names such as Shape are words of the language as well: they are links only where they are marked as code.
LINKED = re.compile("|".join([r"(?P<code>`[^`]+`)"] + [rf"(?<![\w./]){re.escape(one)}(?!\w)" for one in sorted(
    FUNCTIONS + STRUCTS + FILES + [one for one in RECORDS if re.search(r"[a-z][A-Z]", one)], key=len, reverse=True)]))


def inline(text):
    """A run of text with its links."""
    out, at = "", 0
    for found in LINKED.finditer(text):
        out += escaped(text[at:found.start()])
        word = found[0].strip("`")
        target = target_of(word)
        mark = f"<code>{escaped(word)}</code>" if found["code"] else escaped(word)
        out += f'\\ref {target} "{escaped(word)}"' if target else mark
        at = found.end()
    return out + escaped(text[at:])


ENTRY = re.compile(r"^( *)(\S+(?: \S+)*?)( {2,})(\S.*)$")


def blocks(lines):
    """Paragraphs, lists of terms and examples in plain text that is laid out with blanks."""
    out, paragraph, at = [], [], 0

    def end_paragraph():
        if paragraph:
            out.append(inline(" ".join(paragraph)))
            out.append("")
            paragraph.clear()

    while at < len(lines):
        line = lines[at]
        entry = ENTRY.match(line)
        if not line.strip():
            end_paragraph()
            at += 1
        elif entry:
            end_paragraph()
            out.append("<dl class=\"terms\">")
            start, column = len(entry[1]), entry.start(4)
            while at < len(lines):
                line, entry = lines[at], ENTRY.match(lines[at])
                if entry:
                    term, column = entry[2], entry.start(4)
                elif line[:start].strip() == "" and line[start:start + 1].strip() and line[column - 1:column] == " ":
                    term = line[:column].strip()  # a term that leaves one blank before its text
                else:
                    break
                content, at = [line[column:]], at + 1
                while at < len(lines) and (lines[at][:column - 2].strip() == "" and lines[at].strip()
                                           or (not lines[at].strip() and at + 1 < len(lines)
                                               and lines[at + 1].strip() and not lines[at + 1][:column].strip())):
                    content.append(lines[at][column:] if not lines[at][:column].strip()
                                   else lines[at].strip())
                    # A nested term may begin a character before the text, as "-1" under "0" does.
                    if lines[at].strip() and lines[at][:column].strip():
                        break
                    at += 1
                out.append(f"<dt>{inline(term)}</dt><dd>")
                out.extend(blocks(content))
                out.append("</dd>")
            out += ["</dl>", ""]
        elif line.startswith("  "):
            end_paragraph()
            out.append("@verbatim")
            while at < len(lines) and (lines[at].startswith("  ") or not lines[at].strip()):
                if not lines[at].strip() and at + 1 < len(lines) and ENTRY.match(lines[at + 1]):
                    break  # terms follow the example
                out.append(lines[at][2:])
                at += 1
            while not out[-1].strip():
                out.pop()
            out += ["@endverbatim", ""]
        else:
            paragraph.append(line.strip())
            at += 1
    end_paragraph()
    return out
