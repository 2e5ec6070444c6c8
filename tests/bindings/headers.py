"""What the C headers declare: functions, structs, types and constants, as the table of the bindings writes them."""
import re

COMMENT = re.compile(r"/\*.*?\*/|//[^\n]*", re.S)
FUNCTION = re.compile(r"\b(?:OLDTORVIO|TORVIO)_API\s+([^;{}]*?)\(([^;{}]*?)\)\s*"
                      r"(?:OLDTORVIO|TORVIO)_NOEXCEPT\s*;", re.S)
STRUCT = re.compile(r"\btypedef\s+struct\s+(\w+)\s*\{(.*?)\}\s*\1\s*;", re.S)
TYPE = re.compile(r"\btypedef\s+(u?int\d+_t)\s+(\w+)\s*;")
ENUM = re.compile(r"\benum\s*\{(.*?)\}\s*;", re.S)
CONSTANT = re.compile(r"^#define\s+([A-Z]\w*)\s+(UINT(?:32|64)_(?:C\(\w+\)|MAX))\s*$", re.M)


def normal(c_type):
    """A type with its blanks and asterisks in the usual places: "const char *" becomes "const char*"."""
    return re.sub(r"\s*(\*+)", r"\1", " ".join(c_type.split()))


def declared(text):
    """(type, name) of "float x", "const char* path" or "char infoText1[256]"."""
    found = re.fullmatch(r"(.*?)(\w+)\s*(\[\d+\])?", " ".join(text.split()))
    if not found or not found[1]:
        raise ValueError("no declaration: " + text)
    return normal(found[1]) + (found[3] or ""), found[2]


def value(text):
    if text == "UINT64_MAX":
        return 2 ** 64 - 1
    return int(re.sub(r"UINT\d+_C\((\w+)\)", r"\1", text), 0)


def parse(text):
    """The declarations of a header. Every line with an export macro has to be a function that is found."""
    text = COMMENT.sub(" ", text)
    constants = {name: value(number) for name, number in CONSTANT.findall(text)}
    # What is left is only C: without directives, some of which continue on the next line.
    code = re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*$", "", text, flags=re.M)
    functions = {}
    for result, parameters in FUNCTION.findall(code):
        result, name = declared(result)
        listed = [] if parameters.strip() == "void" else [declared(one) for one in parameters.split(",")]
        if name in functions:
            raise ValueError(name + " is declared twice")
        functions[name] = (result, listed)
    exported = len(re.findall(r"\b(?:OLDTORVIO|TORVIO)_API\b", code))
    if exported != len(functions):
        raise ValueError(f"{exported} exports, but only {len(functions)} declarations of functions are understood")
    for enum in ENUM.findall(code):
        for one in enum.split(","):
            if one.strip():
                name, number = one.split("=")
                constants[name.strip()] = value(number.strip())
    structs = {name: [declared(one) for one in members.split(";") if one.strip()]
               for name, members in STRUCT.findall(code)}
    return {"functions": functions, "structs": structs, "types": {name: what for what, name in TYPE.findall(code)},
            "constants": constants}
