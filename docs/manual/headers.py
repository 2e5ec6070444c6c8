"""Input filter of Doxygen: a public header as Doxygen reads it. headers.py FILE

The comments of the headers are plain text. Here they become comments of Doxygen, sections of functions become modules,
and each field of a record says how it is stored.
"""
import pathlib
import re
import sys

import records
from text import blocks, escaped, inline

PAGES = {row: "format_" + row.removesuffix(".md").replace("-", "_") for row in
         (path.name for path in (records.ROOT / "docs" / "formats").glob("*.md"))}


# What the headers leave to the reader because the line itself says it.
SAID = {
    "OldTorvIO.h": {
        "  float infoSizeY;": "second of the pair",
        "  char infoText2[256];": "as infoText1",
        "  int32_t infoStationWord;": "copied from the machine",
        "  uint32_t infoExtra1;": "copied from the machine",
        "  uint32_t infoExtra2;": "copied from the machine",
    },
    "torvio.h": {
        "typedef int32_t torvio_status;": "one of the values TORVIO_OK to TORVIO_INTERNAL_ERROR",
        "#define TORVIO_NO_OFFSET UINT64_MAX": "the offset of an error without one, see torvio_error",
    },
    "lazy_array.h": {
        "  using value_type = T;": "the type of an element",
        "  LazyArray(const LazyArray& other)": "a deep copy",
        "  LazyArray(LazyArray&& other)": "takes the elements",
        "  LazyArray& operator=(const LazyArray& other)": "a deep copy",
        "  LazyArray& operator=(LazyArray&& other)": "takes the elements",
        "  static constexpr std::size_t size()": "the number of elements, whether or not they take memory",
        "  T& operator[](Index i)": "allocates the element if it has no memory yet",
        "  const T& operator[](Index i) const": "never allocates",
        "  auto begin() {": "to the first element",
        "  auto end() {": "past the last element",
        "  auto begin() const": "to the first element; access through it never allocates",
        "  auto end() const": "past the last element",
    },
    "material_parts.h": {
        "  static std::vector<SizeRule> defaultSizeRulesA()": "the rules of a new record",
        "  static std::vector<SizeRule> defaultSizeRulesB()": "the rules of a new record",
    },
    "param_table.h": {"  static constexpr int kNumbers = 601;": "how many parameters there are, stored or not"},
}


def with_said(name, text):
    for line, said in SAID.get(name, {}).items():
        if text.count("\n" + line) != 1:
            sys.exit(f"{name} has not one line that begins with: {line}")
        indent = re.match(" *", line)[0]
        if "template" in text.split("\n" + line)[0].rsplit("\n", 1)[-1]:
            before, after = text.split("\n" + line)
            before, template = before.rsplit("\n", 1)
            text = f"{before}\n{indent}/** {inline(said[0].upper() + said[1:])}. */\n{template}\n{line}{after}"
        else:
            text = text.replace("\n" + line, f"\n{indent}/** {inline(said[0].upper() + said[1:])}. */\n{line}")
    return text


def comment(lines, indent=""):
    return [f"{indent}/** {lines[0]}"] + [f"{indent}{line}" for line in lines[1:]] + [f"{indent}*/"]


def as_module(name):
    return re.sub(r"\W+", "_", name.lower()).strip("_")


# ---- OldTorvIO.h and torvio.h ---------------------------------------------------------------------

MODULES = {"OldTorvIO.h": ("oldtorvio_functions", "Functions of OldTorvIO.h"),
           "torvio.h": ("torvio_functions", "Functions of torvio.h")}


def c_header(path):
    module, title = MODULES[path.name]
    out, is_first, is_open = [], True, False
    conventions = f"The conventions of all functions are in \\ref {path.name} \"{path.name}\"."
    text = with_said(path.name, path.read_text(encoding="utf-8"))
    text = re.sub(r"#if defined\(_WIN32\)\n.*?_API\n#endif\n", "", text, count=1, flags=re.S)
    text = re.sub(r"#define (OLD)?TORVIO_NOEXCEPT.*\n", "", text)
    # Two functions with one description.
    text = re.sub(r"(/\*(?:(?!\*/).)*\*/\n)(OLDTORVIO_API [^;]*;\n)(?=OLDTORVIO_API)", r"\1\2\1", text, flags=re.S)
    at = 0
    for found in re.finditer(r"/\*(.*?)\*/", text, re.S):
        before, at = text[at:found.start()], found.end()
        out.append(before)
        if found[1].startswith("*"):
            out.append(found[0])
            continue
        lines = [re.sub(r"^ \* ?", "", line).rstrip() for line in found[1].split("\n")]
        section = re.match(r" ---- (.*?):? ?-{4,} $|^ ---- (.*?) -+ $", found[1])
        if is_first:
            is_first = False
            lines[0] = lines[0].strip()
            out.append("\n".join(comment([f"@file {path.name}", *blocks(lines)])))
            out.append("\n/** @defgroup " + f"{module} {title}\n" + "\n".join(blocks([lines[0]])) +
                       f"\n{conventions} */")
        elif found[1].startswith(" ---- "):
            name, _, rest = re.sub(r"[- ]+$", "", found[1][6:]).partition(": ")
            out.append("/** @} */\n" if is_open else "")
            is_open = True
            out.append(f"/** @defgroup {module}_{as_module(name)} {escaped(name)}\n@ingroup {module}\n"
                       f"{inline(rest[:1].upper() + rest[1:] + '.') if rest else ''}\n\n{conventions}\n@{{ */")
        elif before.endswith("\n") or re.search(r"\n +$", before):
            following = text[at:].lstrip("\n")
            if following.startswith("/*") or following.startswith("#pragma pop"):
                out.append("\n".join(comment(["@addtogroup x", *blocks(lines)])))
            elif following.startswith("#if") or following.startswith("#pragma"):
                out.append(found[0])
            elif following.startswith("/* Each"):
                out.append(found[0])
            else:
                lines = [line.strip() if number == 0 else line for number, line in enumerate(lines)]
                out.append("\n".join(comment(blocks(lines))))
        elif before.rstrip().endswith(("endif", "{")) or "extern" in text[at - 20:at]:
            out.append(found[0])
        else:
            out.append("/**< " + inline(" ".join(" ".join(lines).split())) + " */")
    rest = text[at:]
    if is_open:
        # Before the end of the header, where the names are restored.
        cut = rest.rfind("#pragma pop_macro")
        cut = cut if cut >= 0 else rest.rfind("#ifdef __cplusplus")
        rest = rest[:cut] + "/** @} */\n" + rest[cut:]
    return "".join(out) + rest


# ---- records ----------------------------------------------------------------------------------------

def plain(cell):
    """Text of a table, in which HTML has no meaning."""
    return escaped(cell.replace("`", ""))


def stored(rows):
    """One line for each way in which files store the field, with the tables that say so."""
    forms = {}
    order = list(records.TABLES)
    for row in sorted(rows, key=lambda row: order.index(row.table)):
        what = ", ".join(plain(one) for one in (row.stored.removesuffix(" each"), row.condition) if one)
        where = f'\\ref {PAGES[row.page]}{"-" + row.anchor if row.anchor else ""} "{row.table}"'
        forms.setdefault(what or "see there", []).append(where)
    out = [f'<span class="stored">{", ".join(dict.fromkeys(where))}: {what}</span>' for what, where in forms.items()]
    if len(out) > 4:
        where = next(iter(forms.values()))[0]
        out = out[:3] + [f'<span class="stored">and {len(out) - 3} more rows of {where}</span>']
    return out


def field_comment(record, member, forms, names, alias):
    rows = stored(forms.get((record, member.name), []))
    # "Since 71" is in the rows as well.
    said = "" if rows and re.fullmatch(r"since \d+", member.comment) else inline(member.comment.replace("\n", " "))
    said = said[:1].upper() + said[1:]
    if said and not said.endswith((".", "!", ":")):
        said += "."
    if not said and not rows:
        held = records.element_type(member.type, alias)
        if held not in names:
            return ""
        said = f"Stored field by field, see \\ref oldtorvio::{held} \"{held}\"."
    # The rows are blocks of their own. A full stop and a blank would end the brief description.
    return " ".join([said.removesuffix(".").replace(". ", ".\\ ") if rows else said.replace(". ", ".\\ "), *rows]).strip()


def record_comment(record, header, forms, holders):
    lines = blocks(record.comment.split("\n")) if record.comment else []
    # The first comment of a header says what its main record is.
    if len(header.records) == 1 or record.name.lower().endswith(header.path.stem.replace("_", "")):
        lines = blocks(next((piece[2] for piece in header.pieces if piece[0] == "comment"), [])) + lines
    held = [f'\\ref oldtorvio::{name}::{field} "{name}::{field}"' for name, field in holders.get(record.name, [])]
    if held:
        lines += ["", "Held by " + ", ".join(held) + "."]
    tables = [(name, page, anchor) for name, page, anchor in table_places() if records.TABLES.get(name) == record.name]
    if tables:
        lines += ["", "Stored form: " + ", ".join(
            f'\\ref {PAGES[page]}{"-" + anchor if anchor else ""} "{name}"' for name, page, anchor in tables) + "."]
    return lines


def table_places():
    for page in sorted((records.ROOT / "docs" / "formats").glob("*.md")):
        anchor = ""
        for line in page.read_text(encoding="utf-8").split("\n"):
            anchor = records.slug(line[3:]) if line.startswith("## ") else anchor
            if found := re.match(r"<!-- format (\S+) -->", line):
                yield found[1], page.name, anchor


def record_header(path):
    headers = records.read_headers()
    header = next(one for one in headers if one.path.name == path.name)
    forms, holders, alias = records.stored_forms(headers), records.holders(headers), records.aliases()
    names = {record.name for one in headers for record in one.records}
    by_name = {record.name: record for record in header.records}
    out, current, is_first = [], None, True
    for number, (kind, *piece) in enumerate(header.pieces):
        if kind == "member":
            said = field_comment(current, piece[0], forms, names, alias)
            out.append(f"  {piece[0].text}" + (f" /**< @brief {said} */" if said else ""))
            continue
        indent, lines = piece
        if kind == "comment":
            following = next((one for one in header.pieces[number + 1:]), ("code", "", [""]))
            if is_first:
                is_first = False
                out += comment([f"@file OldTorvIO/{path.name}", *blocks(lines)])
            elif not re.match(r"(struct|class) \w+ |struct \w+;", following[2][0] if following[0] == "code" else ""):
                out += comment(blocks(lines), indent)
            continue
        for line in lines:
            opening = re.match(r"^(?:template <.*> )?(?:struct|class) (\w+)(?: : \w+)? \{", line)
            if opening and opening[1] in by_name:
                current = opening[1]
                out += comment(record_comment(by_name[current], header, forms, holders))
            if found := re.match(r"^using (\w+) = ", line):
                out.append(f"/** A list: {escaped(line.removesuffix(';').split(' = ')[1])}. */"
                           if not out or not out[-1].endswith("*/") else "")
            out.append(line)
    text = "\n".join(out)
    # A private class is no part of the manual.
    text = re.sub(r"(  template <class Owner, class Element>\n  class Iterator \{.*?\n  \};\n)",
                  r"  /** @cond */\n\1  /** @endcond */\n", text, flags=re.S)
    # Overloads with one description.
    return re.sub(r"(/\*\*(?:(?!\*/).)*\*/\n)((?:template[^\n]*\n)(?:[^\n]+\n)*?\}\n)(?=template)", r"\1\2\1", text, flags=re.S)


def main():
    path = pathlib.Path(sys.argv[1])
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    if path.name in MODULES:
        sys.stdout.write(c_header(path))
    else:
        sys.stdout.write(with_said(path.name, record_header(path)))


if __name__ == "__main__":
    main()
