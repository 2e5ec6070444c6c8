"""Finds the places of a C++ source that a mutation run changes, and rewrites the source so that each change
can be switched on at run time (tests/mutation/switch.h).

It relies on the style of this code base, which clang-format enforces: the "<" of a template directly follows
a word, that of a comparison is between blanks, and the contents of a namespace are not indented.
"""
import bisect
import re

TOKEN = re.compile(
    r"""(?P<space>\s+|//[^\n]*|/\*.*?\*/)
      |(?P<preprocessor>(?:(?<=\n)|\A)[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
      |(?P<text>R"(?P<mark>[^(]*)\(.*?\)(?P=mark)"|"(?:[^"\\\n]|\\.)*")
      |(?P<char>'(?:[^'\\\n]|\\.)+')
      |(?P<number>\d(?:[\w.]|(?<=[eE])[+-]|'(?=\w))*)
      |(?P<word>[A-Za-z_]\w*)
      |(?P<sign><=>|<<=|\.\.\.|->\*|->|::|<<|<=|>=|==|!=|&&|\|\||\+\+|--|[-+*/%&|^]=|.)""",
    re.VERBOSE | re.DOTALL)

COMPARISONS = {"<": ("less", "<="), "<=": ("lessOrEqual", "<"), ">": ("greater", ">="),
               ">=": ("greaterOrEqual", ">"), "==": ("equal", "!="), "!=": ("notEqual", "==")}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^="}
OPENING, CLOSING = {"(": ")", "[": "]", "{": "}"}, {")", "]", "}"}
SCALAR = re.compile(r"(?:std::)?(?:size_t|u?int(?:8|16|32|64)_t|string_view)|int|unsigned|float|double|bool|const char\*")
# Calls that walk a layout: a && between two of them is the stop rule.
VERB = re.compile(r"(?:return\s+)?(?:\(*\s*)?!?\s*(?:(?:io|reader|quick|all)\s*\.|self\(\)\.|this->walk\b|describe\w*\(|store\w*\("
                  r"|(?:fields|counted|countFor|readCount|appendRun|append|clear|walk|rest|chain|bytes|reserved|one"
                  r"|numbers|writeElement|lengthText|elementAt|forgive|row|item|inside|list<\w+>)\()")
NO_CONSTANTS = {"kMinStoredSize": "size of the shortest stored form: a hint for how much memory to allocate",
                "kFastPath": "whether there is a faster path with the same result",
                "kIsRow": "part of a type", "kIsFields": "part of a type",
                "kTableOf": "name of a table, by which the compiler chooses"}


# Types of tables that code uses which is not rewritten: they keep their names, other tables become functions.
LIVE_TABLES = ("VersionSet", "std::array")


class Token:
    __slots__ = ("kind", "text", "start", "end", "match", "spaced")

    def __init__(self, kind, text, start, end):
        self.kind, self.text, self.start, self.end = kind, text, start, end
        self.match = None  # index of the bracket that belongs to it
        self.spaced = False  # a sign between blanks

    def __repr__(self):
        return self.text


def tokens_of(text):
    tokens, at = [], 0
    while at < len(text):
        found = TOKEN.match(text, at)
        kind = found.lastgroup if found.lastgroup != "mark" else "text"
        if kind != "space":
            token = Token(kind, found[0], at, found.end())
            before = text[at - 1:at]
            token.spaced = before.isspace() and text[token.end:token.end + 1].isspace()
            tokens.append(token)
        at = found.end()
    match_brackets(tokens, text)
    return tokens


def match_brackets(tokens, text):
    stack = []
    for i, token in enumerate(tokens):
        if token.kind != "sign":
            continue
        before = tokens[i - 1] if i else None
        if token.text in OPENING:
            stack.append(i)
        elif token.text in CLOSING:
            while stack and tokens[stack[-1]].text == "<":
                stack.pop()
            pair(tokens, stack.pop(), i)
        elif token.text == "<" and not token.spaced and before is not None:
            touches = before.end == token.start and before.kind == "word" and before.text != "operator"
            if touches or before.text in ("template", "]"):
                stack.append(i)
        elif token.text == ">" and stack and tokens[stack[-1]].text == "<" and not token.spaced:
            pair(tokens, stack.pop(), i)
        elif token.text == ">" and stack and tokens[stack[-1]].text == "<" and token.start > 0 \
                and not text[token.start - 1].isspace():
            pair(tokens, stack.pop(), i)


def pair(tokens, a, b):
    tokens[a].match, tokens[b].match = b, a


class Site:
    """One mutant: at `offset`, `what` becomes `instead`."""

    def __init__(self, offset, what, instead):
        self.offset, self.what, self.instead = offset, what, instead
        self.id = self.name = self.line = self.file = None


class Source:
    def __init__(self, file, text, ids, constants):
        self.file, self.text, self.ids = file, text, ids
        self.tokens = tokens_of(text)
        self.constants = constants
        self.sites, self.skipped = [], []
        self.edits = []      # (start, end, replacement)
        self.around = []     # (start, end, opening, closing)
        self.lines = [m.start() for m in re.finditer(r"^", text, re.MULTILINE)]
        self.line_set = set(self.lines)
        self.leave = {}      # index of a token: why it is not changed
        self.tables = {}

    # ---- places ----

    def position(self, offset):
        line = bisect.bisect_right(self.lines, offset)
        return line, offset - self.lines[line - 1] + 1

    def new(self, offset, what, instead):
        site = Site(offset, what, instead)
        line, column = self.position(offset)
        site.id = next(self.ids)
        site.file, site.line = self.file, line
        site.name = f"{self.file}:{line}:{column} {what} -> {instead}"
        self.sites.append(site)
        return site.id

    def skip(self, token, why):
        line, column = self.position(token.start)
        self.skipped.append((why, f"{self.file}:{line}:{column} {token.text}"))

    def mark(self, first, last, why):
        for i in range(first, last + 1):
            self.leave.setdefault(i, why)

    def wrap(self, first, last, opening, closing=")"):
        self.around.append((self.tokens[first].start, self.tokens[last].end, opening, closing))

    # ---- bounds of an operand ----

    def operand_start(self, i, stop):
        """Index of the first token of the operand that ends before token i."""
        first = i
        j = i - 1
        while j >= 0:
            token = self.tokens[j]
            if token.match is not None and token.match < j:
                first = j = token.match
                j -= 1
                continue
            if token.kind == "sign" and (token.text in stop or token.text in OPENING or token.text in ";,?:"
                                         or token.text in ASSIGNMENTS):
                break
            if token.kind == "word" and token.text in ("return", "else", "do", "case", "throw", "concept"):
                break
            first = j
            j -= 1
        return first

    def operand_end(self, i, stop):
        last = i
        j = i + 1
        while j < len(self.tokens):
            token = self.tokens[j]
            if token.match is not None and token.match > j:
                last = j = token.match
                j += 1
                continue
            if token.kind == "sign" and (token.text in stop or token.text in CLOSING or token.text in ";,?:"):
                break
            last = j
            j += 1
        return last

    def after(self, i):
        """Index of the token after token i, or after its closing bracket."""
        match = self.tokens[i].match
        return (match if match is not None and match > i else i) + 1

    def is_read_first(self, i):
        """Whether token i is the initial value of a local that is overwritten where it is mentioned next."""
        tokens = self.tokens
        if tokens[i - 1].text != "=" or tokens[i + 1].text not in (",", ";"):
            return False
        name = tokens[i - 2].text
        mention = next((j for j in range(i, len(tokens)) if tokens[j].text == name), None)
        if mention is None or tokens[mention - 1].text in (".", "->", "::"):
            return False
        calls = [tokens[k - 1].text for k in range(i, mention)
                 if tokens[k].text == "(" and tokens[k].match > mention]
        return bool({"FIELDS", "readCount", "countFor", "readUnversioned"} & set(calls))

    # ---- what is not changed ----

    def find_unchanged(self):
        tokens = self.tokens
        for i, token in enumerate(tokens):
            after = tokens[i + 1] if i + 1 < len(tokens) else None
            if token.kind == "preprocessor":
                self.leave[i] = "preprocessor"
            elif token.text == "static_assert":
                self.mark(i, after.match, "static_assert: only the compiler evaluates it")
            elif token.text == "if" and after.text == "constexpr":
                self.mark(i, tokens[i + 2].match, "if constexpr: only the compiler evaluates it")
            elif token.text == "requires" and after.text == "{":
                self.mark(i, after.match, "requires: only the compiler evaluates it")
            elif token.text == "concept":
                end = next(j for j in range(i, len(tokens)) if tokens[j].text == ";")
                self.mark(i, end, "concept: only the compiler evaluates it")
            elif token.text == "enum":
                body = next(j for j in range(i, len(tokens)) if tokens[j].text in "{;")
                if tokens[body].text == "{":
                    self.mark(body, tokens[body].match, "enumerator")
            elif token.text == "<" and token.match is not None:
                self.mark(i, token.match, "template argument: part of a type")
            elif token.text == "[" and after.text == "[":
                self.mark(i, token.match, "attribute")
            elif token.text == "extern" and after.kind == "text":
                self.leave[i + 1] = "linkage"
            elif token.text == "operator":
                self.leave[i + 1] = "operator"
            elif token.text == "case":
                end = next(j for j in range(i, len(tokens)) if tokens[j].text == ":")
                self.mark(i, end, "case")
            elif token.text == "sizeof" and after.text == "(":
                self.mark(i, after.match, "sizeof: only the compiler evaluates it")

    # ---- named constants ----

    def find_constants(self):
        """Definitions of named constants and of tables: (name, index, first, last token of its value)."""
        tokens = self.tokens
        for i, token in enumerate(tokens):
            is_table = token.text == "const" and token.start in self.line_set and tokens[i + 3].text == "["
            if not is_table and (token.text != "constexpr" or tokens[i - 1].text == "if"):
                continue
            equals = i + 1
            while tokens[equals].text not in (";", "{", "=", "("):
                equals = self.after(equals)
            if tokens[equals].text == "(":
                continue  # a function
            end = equals
            while tokens[end].text != ";":
                end = self.after(end)
            yield i, equals, end

    def take_constants(self):
        """Scalars: each use is a mutant, the definition is not changed. Tables: rebuilt for each access."""
        tokens = self.tokens
        for i, equals, end in self.find_constants():
            is_outside = self.text[self.lines[self.position(tokens[i].start)[0] - 1]] not in " "
            name_at = equals - 1
            if tokens[name_at].text == ">":  # a specialisation: kTableOf<Shape>
                name_at = tokens[name_at].match - 1
            if tokens[name_at].text == "]":
                name_at = tokens[name_at].match - 1
            name = tokens[name_at].text
            type_text = self.text[tokens[i].end:tokens[name_at].start].strip()
            if name in NO_CONSTANTS:
                self.mark(i, end, NO_CONSTANTS[name])
            elif self.file == "src/frame/codec/item.h":
                self.mark(i, end, "size of a type")
            elif tokens[equals].text == ";":
                self.edits.append((tokens[i].start, tokens[i].end, "const"))
            elif SCALAR.fullmatch(type_text) and tokens[equals - 1].text != "]":
                self.mark(i, end, "definition")
                depth_names = [name]
                for j in range(equals, end):
                    if tokens[j].text == "," and tokens[j + 2].text == "=":
                        depth_names.append(tokens[j + 1].text)
                for one in depth_names:
                    self.constants.add(one)
            elif type_text == "auto":
                continue  # a lambda
            elif is_outside:
                self.tables[name] = (i, name_at, equals, end, type_text)
            else:
                self.edits.append((tokens[i].start, tokens[i].end, "const"))

    # ---- rewriting ----

    def take_sites(self, constants, tables):
        tokens, text = self.tokens, self.text
        decided = set()  # tokens of conditions that are sites themselves
        for i, token in enumerate(tokens):
            why = self.leave.get(i)
            if token.kind == "preprocessor" or why in ("definition", "operator", "linkage", "attribute", "case"):
                continue
            before = tokens[i - 1] if i else None
            after = tokens[i + 1] if i + 1 < len(tokens) else None
            if token.kind in ("number", "char") or token.text in ("true", "false"):
                if not why and token.text == "0" and self.is_read_first(i):
                    why = "initial value that is overwritten before it is used"
                if why:
                    self.skip(token, why)
                    continue
                site = self.new(token.start, token.text, {"true": "false", "false": "true"}.get(token.text) or changed(token))
                self.wrap(i, i, f"::oldtorvio_mutation::number<{site}>(")
            elif token.kind == "text" and token.text != '""':
                if why:
                    if not why.startswith("static_assert"):
                        self.skip(token, why)
                    continue
                site = self.new(token.start, token.text, "another text")
                if before.text == "=" and tokens[i - 2].text == "]":
                    letters = [f"'{c}'" for c in token.text[1:-1]]
                    letters[0] = f"::oldtorvio_mutation::number<{site}>({letters[0]})"
                    self.edits.append((token.start, token.end, "{" + ", ".join(letters) + "}"))
                else:
                    self.wrap(i, i, f"::oldtorvio_mutation::text<{site}>(")
            elif token.kind == "word" and token.text in constants and (before is None or before.text not in (".", "->")):
                if why:
                    self.skip(token, why)
                    continue
                first = i
                while tokens[first - 1].text == "::" and tokens[first - 2].kind == "word":
                    first -= 2
                site = self.new(token.start, token.text, token.text + ", changed")
                self.wrap(first, i, f"::oldtorvio_mutation::number<{site}>(")
            elif token.kind == "word" and token.text in tables and i != self.tables.get(token.text, (0, -1))[1]:
                self.edits.append((token.end, token.end, "()"))
            elif token.kind == "sign" and token.text in COMPARISONS and token.match is None:
                if token.text in "<>" and not token.spaced:
                    continue
                if why:
                    self.skip(token, why)
                    continue
                if token.text in "<>" and before.text == "template":
                    continue
                name, instead = COMPARISONS[token.text]
                site = self.new(token.start, token.text, instead)
                self.edits.append((token.end, token.end, f" ::oldtorvio_mutation::{name}<{site}> {token.text}"))
                decided.add(i)
            elif token.kind == "sign" and token.text in ("&&", "||") and token.spaced:
                if why:
                    self.skip(token, why)
                    continue
                if after.text == "..." or before.text == "...":
                    self.skip(token, "&& of a fold: the stop rule over all fields")
                    continue
                stop = ("||",) if token.text == "&&" else ()
                first, last = self.operand_start(i, stop), self.operand_end(i, ("&&", "||") if token.text == "&&" else ("||",))
                nearest = self.operand_start(i, ("&&", "||"))
                near = text[tokens[nearest].start:before.end]
                compares = any(nearest <= j < i for j in decided)
                if token.text == "&&" and not compares and VERB.match(near):
                    self.skip(token, "&& after a verb: the stop rule")
                    continue
                site = self.new(token.start, token.text, "||" if token.text == "&&" else "&&")
                self.wrap(first, last, f"::oldtorvio_mutation::flip<{site}>(")
                self.wrap(first, i - 1, f"::oldtorvio_mutation::flip<{site}>(")
                self.wrap(i + 1, last, f"::oldtorvio_mutation::flip<{site}>(")
                decided.add(i)
        self.take_conditions(decided)
        self.take_switches()
        self.keep_names()

    def take_conditions(self, decided):
        tokens = self.tokens
        for i, token in enumerate(tokens):
            if i in self.leave or i + 1 >= len(tokens):
                continue
            if token.text in ("if", "while") and tokens[i + 1].text == "(":
                first, last = i + 2, tokens[i + 1].match - 1
                for j in range(first, last):
                    if tokens[j].text == ";":
                        first = j + 1
            elif token.text in ("when", "require") and tokens[i + 1].text == "(" and tokens[i - 1].text == ".":
                first, last = i + 2, self.argument_end(i + 2)
            elif token.text == "?":
                first, last = self.operand_start(i, ()), i - 1
            else:
                continue
            inside = [j for j in decided if first <= j <= last]
            # The complete condition of a verb is negated as well, unless the mutant of its only comparison does that.
            is_gate = token.text in ("when", "require") and not (len(inside) == 1 and tokens[inside[0]].text in ("==", "!="))
            if inside and not is_gate:
                continue
            shown = " ".join(self.text[tokens[first].start:tokens[last].end].split())
            if any(tokens[j].text == "=" for j in range(first, last)):
                self.skipped.append(("condition with a declaration", f"{self.file}:{self.position(token.start)[0]} {shown}"))
                continue
            site = self.new(tokens[first].start, shown, f"not ({shown})")
            self.wrap(first, last, f"::oldtorvio_mutation::flip<{site}>(")

    def argument_end(self, first):
        j = first
        while self.tokens[j].text not in (",", ")"):
            j = self.after(j)
        return j - 1

    def take_switches(self):
        tokens = self.tokens
        for i, token in enumerate(tokens):
            if token.text != "switch" or token.kind != "word":
                continue
            close = tokens[i + 1].match
            body = close + 1
            labels = []
            for j in range(body, tokens[body].match):
                if tokens[j].text == "case":
                    end = next(k for k in range(j, len(tokens)) if tokens[k].text == ":")
                    labels.append((j + 1, self.text[tokens[j + 1].start:tokens[end].start].strip()))
            ids = [self.new(tokens[j].start, f"case {label}", "no such case") for j, label in labels]
            values = ", ".join(label for _, label in labels)
            self.wrap(i + 2, close - 1, f"::oldtorvio_mutation::chosen<{ids[0]}, {values}>(")

    def keep_names(self):
        """FIELDS(...) uses its text as the names of its fields, which must stay those of the original source."""
        tokens = self.tokens
        starts = [s for s, _, _ in self.edits] + [s for s, _, _, _ in self.around]
        for i, token in enumerate(tokens):
            if token.text != "FIELDS" or i + 1 >= len(tokens) or tokens[i + 1].text != "(" or token.kind != "word":
                continue
            first, last = tokens[i + 1].end, tokens[tokens[i + 1].match].start
            if not any(first <= start < last for start in starts):
                continue
            names = " ".join(re.sub(r"//[^\n]*", "", self.text[first:last]).split())
            names = names.replace("\\", "\\\\").replace('"', '\\"')
            self.edits.append((token.start, tokens[i + 1].end, f'::oldtorvio::codec::bindFields([] {{ return "{names}"; }}, '))

    def rewrite_tables(self):
        tokens, text = self.tokens, self.text
        for name, (i, name_at, equals, end, type_text) in self.tables.items():
            start = tokens[i].start
            value = tokens[equals].start if tokens[equals].text == "{" else tokens[equals + 1].start
            if tokens[i - 1].text == "inline":
                start = tokens[i - 1].start
            if type_text == "VersionSet":
                self.edits.append((start, value, f"inline constexpr ::oldtorvio_mutation::Live<VersionSet> {name}"
                                                 "{[] { return VersionSet"))
                self.edits.append((tokens[end].start, tokens[end].start, "; }}"))
                continue
            if type_text in LIVE_TABLES:
                self.edits.append((start, value, f"inline constexpr ::oldtorvio_mutation::LiveTable {name}"
                                                 "{[] { return std::array"))
                self.edits.append((tokens[end].start, tokens[end].start, "; }}"))
                continue
            made, closing = type_text, ""
            if tokens[equals - 1].text == "]":
                made, closing = f"std::to_array<{type_text}>(", ")"
            self.edits.append((start, value, f"inline auto& {name}() {{ const auto make = [] {{ return {made}"))
            self.edits.append((tokens[end].start, tokens[end].end,
                               f"{closing}; }}; static thread_local auto all = make(); all = make(); return all; }}"))

    def rewritten(self):
        pieces = []
        for start, end, replacement in self.edits:
            pieces.append((start, -1 if start == end else 3, 0, end, replacement))
        for start, end, opening, closing in self.around:
            pieces.append((start, 2, -end, start, opening))
            pieces.append((end, 0, -start, end, closing))
        pieces.sort(key=lambda p: p[:3])
        result, at = [], 0
        for start, _, _, end, replacement in pieces:
            result.append(self.text[at:start])
            result.append(replacement)
            at = max(at, end)
        result.append(self.text[at:])
        return "".join(result)


def changed(token):
    text = token.text
    if token.kind == "char":
        return "the next character"
    plain = text.replace("'", "")
    if re.fullmatch(r"0[xX][0-9a-fA-F]+[uUlL]*", plain):
        return hex(int(re.sub(r"[uUlL]+$", "", plain), 16) + 1)
    if re.fullmatch(r"\d+[uUlL]*", plain):
        return str(int(re.sub(r"[uUlL]+$", "", plain)) + 1)
    return "1" if float(plain.rstrip("fF")) == 0 else f"{text} * 1.0625"
