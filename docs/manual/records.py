"""What the public headers and the tables of docs/formats/ say about the records and their fields.

The headers are written for people who read them as text; this module finds in them which comment belongs to which
record or field. How a field is stored comes from the tables, which `torvio format` prints.
"""
import pathlib
import re
from collections import namedtuple

ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADERS = ROOT / "include" / "OldTorvIO"

# The records that the tables describe; the name of a table is that of `torvio format`.
TABLES = {
    "part": "TorvPart", "placed-part": "TorvPart", "grouped-part": "TorvPart", "part-5": "TorvPart",
    "part-2-3": "TorvPart", "pattern": "Pattern", "group-part": "SheetPartList", "special-tool": "OldSpecialTool",
    "machine": "OldMachine", "material": "OldMaterial", "tool-inventory": "OldToolInventory", "macro": "OldMacro",
    "sheet": "OldSheet", "clamp-info": "ClampInfo", "machine-grid": "MachineGrid",
    "machine-extension": "MachineExtension", "unit-table": "MachineUnitTable", "setting-entry": "SettingEntry",
    "setting-group": "SettingGroup", "tool-set": "MaterialToolSet", "angle-rule": "AngleRule",
    "size-rule-a": "SizeRule", "size-rule-b": "SizeRule", "shape-program": "ShapeProgram",
    "extended-shape-program": "ShapeProgramEx", "parameter-table": "ParamTable", "tool": "OldTool",
    "tool-station-list": "ToolStationList", "tool-station": "ToolStation", "shape-list": "ShapeList", "shape": "Shape",
    "process-slot": "ProcessSlot", "step-table": "StepTable", "setup-list": "SetupList", "setup-entry": "SetupEntry",
    "motion-block": "MotionBlock", "profile": "ProfileRecord", "pattern-item": "PatternItem",
    "work-entry": "WorkEntry", "mark": "MarkEntry",
}

Member = namedtuple("Member", "name type text comment")  # text: the declaration of this member only
Record = namedtuple("Record", "name header comment members bases")
Row = namedtuple("Row", "table page anchor stored condition")


def split_list(text):
    """Splits at the commas that are not in brackets or quotes."""
    parts, depth, quoted = [""], 0, False
    for one in text:
        quoted ^= one == '"'
        depth += 0 if quoted else (one in "<({[") - (one in ">)}]")
        if one == "," and depth == 0 and not quoted:
            parts.append("")
        else:
            parts[-1] += one
    return [part.strip() for part in parts]


DECLARATION = re.compile(r"^  ((?:[\w:]+)(?:<.*>)?) (\w.*);$")


def members_of(statement, comment):
    """The members that one statement declares; none if it is a function or a constant."""
    found = DECLARATION.match(statement)
    if not found or "(" in re.split(r"[={]", statement)[0] or statement.lstrip().startswith(("static", "return")):
        return []
    return [Member(re.match(r"\w+", one)[0], found[1], f"{found[1]} {one};", comment)
            for one in split_list(found[2])]


class HeaderText:
    """The parts of a header in their order: ("comment" | "code", indentation, lines) and ("member", Member)."""

    def __init__(self, path):
        self.path, self.pieces, self.records = path, [], []
        self.lines = path.read_text(encoding="utf-8").split("\n")
        self._parse()

    def _parse(self):
        at, inside, pending, group, after_blank = 0, None, [], "", False
        lines = self.lines
        while at < len(lines):
            line = lines[at]
            opening = re.match(r"^(?:struct|class) (\w+)(?: : (\w+))? \{", line)
            if re.match(r"^\s*//", line):
                first = at
                while at < len(lines) and re.match(r"^\s*//", lines[at]):
                    at += 1
                pending = [one.strip()[2:].removeprefix(" ") for one in lines[first:at]]
                if inside and after_blank:
                    group, pending = "\n".join(pending), []
                elif not inside:
                    self.pieces.append(("comment", "", pending))
                after_blank = False
                continue
            at += 1
            if not line.strip():
                group, after_blank = "", True
                self.pieces.append(("code", "", [line]))
                # A comment that a blank line follows belongs to nothing that comes later.
                pending = [] if not inside else pending
                continue
            if opening:
                inside = opening[1]
                self.records.append(Record(inside, self.path.name, "\n".join(pending), [], opening[2]))
                self.pieces.append(("code", "", [line]))
                pending, group, after_blank = [], "", False
                continue
            if line.startswith("};"):
                inside = None
            if inside and re.match(r"^  [\w:]", line) and not line.rstrip().endswith((":", "}")):
                at = self._statement(at - 1, pending, group)
                pending, after_blank = [], False
                continue
            if inside and pending:
                self.pieces.append(("comment", "  ", pending))
            pending, after_blank = [], False
            self.pieces.append(("code", "", [line]))

    def _statement(self, at, pending, group):
        """A statement in a record: its members, or itself if it is none."""
        first, text, comments = at, "", []
        while at < len(self.lines):
            code, _, comment = self.lines[at].partition("//")
            text += code.rstrip() if not text else " " + code.strip()
            if comment:
                comments.append(comment.strip())
            at += 1
            if text.endswith((";", "{", "}")):
                break
        while comments and re.match(r"^ {8,}//", self.lines[at]):
            comments.append(self.lines[at].strip()[2:].strip())
            at += 1
        said = [" ".join(pending), " ".join(comments), " ".join(group.split())]
        members = members_of(text, "\n".join(one for one in said if one))
        if members and self.records:
            self.records[-1].members.extend(members)
            self.pieces += [("member", member) for member in members]
        else:
            if pending:
                self.pieces.append(("comment", "  ", pending))
            self.pieces.append(("code", "", self.lines[first:at]))
        return at


def read_headers():
    return [HeaderText(path) for path in sorted(HEADERS.glob("*.h"))]


def aliases():
    text = "\n".join(path.read_text(encoding="utf-8") for path in HEADERS.glob("*.h"))
    return dict(re.findall(r"^using (\w+) = (.*);$", text, re.M))


def element_type(c_type, alias):
    """OldTool for std::vector<OldTool>, ProcessSlot for ProcessSlots."""
    while True:
        c_type = alias.get(c_type, c_type)
        found = re.match(r"(?:std::vector|LazyArray)<(.*?)(?:, \d+)?>$", c_type)
        if not found:
            return c_type
        c_type = found[1]


def names_in(cell):
    """The paths in the field column: "a1 to a3, b" is a1, a2, a3 and b."""
    for one in cell.split(", "):
        found = re.fullmatch(r"(.*?)(\d+) to (.*?)(\d+)", one)
        if found and found[1] == found[3]:
            yield from (f"{found[1]}{number}" for number in range(int(found[2]), int(found[4]) + 1))
        else:
            yield one


def slug(heading):
    """The anchor of a heading on a code host."""
    return re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def stored_forms(headers):
    """{(record, field): [Row, ...]} from the tables of docs/formats/."""
    records = {record.name: record for header in headers for record in header.records}
    alias, forms = aliases(), {}
    for page in sorted((ROOT / "docs" / "formats").glob("*.md")):
        anchor, table = "", None
        for line in page.read_text(encoding="utf-8").split("\n"):
            if line.startswith("## "):
                anchor = slug(line[3:])
            found = re.match(r"<!-- format (\S+) -->", line)
            table = found[1] if found else None if line == "<!-- end -->" else table
            cells = [cell.strip() for cell in line.strip("|").split(" | ")] if line.startswith("| ") else []
            if table not in TABLES or len(cells) != 4 or not cells[0].isdigit() or cells[1].startswith("("):
                continue
            row = Row(table, page.name, anchor, cells[2], cells[3].strip(" |"))
            for path in names_in(cells[1]):
                record = records[TABLES[table]]
                for name in re.sub(r"\[[^]]*\]", "", path).split("."):
                    member = find_member(record, name, records)
                    if member is None:
                        break
                    key, record = member, records.get(element_type(member[2], alias), record)
                else:
                    rows = forms.setdefault(key[:2], [])
                    if row not in rows:
                        rows.append(row)
    return forms


def find_member(record, name, records):
    """(record, field, type) of the record or of its base."""
    while record:
        for member in record.members:
            if member.name == name:
                return record.name, name, member.type
        record = records.get(record.bases)
    return None


def holders(headers):
    """{record: [(record, field), ...]}: where records are held."""
    alias, found = aliases(), {}
    for header in headers:
        for record in header.records:
            for member in record.members:
                for name in {element_type(member.type, alias)}:
                    found.setdefault(name, []).append((record.name, member.name))
    return found
