"""Checks the manual pages and completions of torvio: they have every command and option of its help, tools that read them
find no fault, and shells complete command lines as they should.

manual_test.py TORVIO SHARE, where SHARE has man, bash-completion and zsh
"""
import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time

tool, share = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
pages = share / "man/man1"
bash_script, zsh_folder = share / "bash-completion/completions/torvio", share / "zsh/site-functions"
wrong = []


def require(condition, text):
    if not condition:
        wrong.append(text)


def printed(*command, **options):
    run = subprocess.run([str(part) for part in command], capture_output=True, text=True, encoding="utf-8", **options)
    return run.stdout, run.stderr, run.returncode


def section(help_text, title):
    return re.search(rf"\n{title}:\n(.*?)\n\n", help_text + "\n\n", re.DOTALL)[1] if f"\n{title}:\n" in help_text else ""


def names_in(options):
    """The names at the beginning of the lines of a help: ["-o", "--output"]."""
    return [name for line in options.splitlines() if re.match(r"  -", line)
            for name in line.split()[0].split(",")]


# ---- what torvio itself prints ----------------------------------------------------------------------------
top = printed(tool, "--help")[0]
commands = [line.split()[0] for line in section(top, "Commands").splitlines()]
require({"check", "info", "map", "draw", "json", "from-json", "format", "schema", "help"} <= set(commands),
        f"the help lists only {commands}")
helps = {command: printed(tool, command, "--help")[0] for command in commands}
options = {command: names_in(section(text, "Options")) for command, text in helps.items()}
for command in commands:
    require("--help" in options[command], f"{command} --help has the options {options[command]}")
    require(printed(tool, "help", command) == (helps[command], "", 0), f"help {command} is not {command} --help")
    for line in helps[command].splitlines():
        require(len(line) <= 80 and line.isprintable(), f"{command} --help: {line!r}")
require(printed(tool, "help") == (top, "", 0), "help is not --help")
require(printed(tool, "help", "nonsense")[2] == 2, "help of an unknown command is no error")
# The same option has the same value and meaning everywhere. "--json" says what an object is for.
meanings = {}
for command, text in helps.items():
    for found in re.finditer(r"(?m)^  (-\S+)(?: (\S+))?\s+([^-\n].*(?:\n {16}.*)*)", section(text, "Options")):
        meanings.setdefault(found[1], {}).setdefault((found[2], " ".join(found[3].split())), []).append(command)
for option in ("--kind", "--ext", "--encoding", "-h,--help"):
    require(len(meanings.get(option, {})) == 1 and len(sum(meanings[option].values(), [])) > 2,
            f"{option} has several meanings: {meanings.get(option)}")
for value, text in meanings["--json"]:
    require(value is None and re.match("Print .*a JSON object", text), f"--json means: {text}")
# What check makes is its catalogue.
require([command for command, text in helps.items() if re.search("(?m)^  -o", text) and "-o,--output" not in text] ==
        ["check"], "-o is not --output everywhere but in check")

# ---- manual pages -----------------------------------------------------------------------------------------
found_pages = {path.name for path in pages.iterdir()}
require(found_pages == {"torvio.1"} | {f"torvio-{command}.1" for command in commands}, f"the pages are {found_pages}")
page_texts = {path.stem: path.read_text(encoding="utf-8") for path in pages.iterdir()}
for command in commands:
    page = page_texts.get(f"torvio-{command}", "")
    for option in options[command]:
        require(re.search(r"(?m)^\.TP\n(?:.*, )?\\fB" + re.escape(option.replace("-", r"\-")) + r"\\fR", page),
                f"torvio-{command}.1 has no entry for {option}")
    described = [line.split()[0] for line in section(helps[command], "Arguments").splitlines()
                 if re.match(r"  \S", line)]
    for argument in described:
        require(rf".TP" "\n" rf"\fI{argument}\fR" "\n" in page, f"torvio-{command}.1 has no entry for {argument}")
    require(rf"\fBtorvio\-{command}\fR(1)".replace("from-json", r"from\-json") in page_texts["torvio"],
            f"torvio.1 does not name {command}")
    for title in ("NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS", "SEE ALSO"):
        require(f".SH {title}\n" in page, f"torvio-{command}.1 has no section {title}")
for option in names_in(section(top, "Options")):
    require(option.replace("-", r"\-") in page_texts["torvio"], f"torvio.1 has no {option}")


def words(text):
    return re.sub(r"\s+", " ", text)


if shutil.which("groff"):
    for path in sorted(pages.iterdir()):
        text, errors, _ = printed("groff", "-man", "-ww", "-Tascii", "-P-c", "-P-b", "-P-o", "-P-u", path)
        require(errors == "", f"{path.name}: {errors}")
        if path.name == "torvio.1":
            continue
        # No word of the help is lost, whatever characters it has.
        for line in helps[path.stem.removeprefix("torvio-")].splitlines()[2:]:
            for word in line.replace(":", " ").replace(",", " ").split():
                if word not in ("Arguments", "Options", "Examples", "Exit", "code"):
                    require(words(word).rstrip(".") in text, f"{path.name} lacks the word {word!r}")
else:
    print("groff is not installed: the pages are only checked for their entries")

# ---- bash -------------------------------------------------------------------------------------------------
script = bash_script.read_text(encoding="utf-8")
require(printed("bash", "-n", bash_script) == ("", "", 0), "bash finds an error in its completion")


def completed(*typed):
    """What bash suggests for the last of these words, and whether it goes on with names of files."""
    # Readline divides words at "=".
    words = [part for word in ("torvio",) + typed for part in (re.findall(r"=|[^=]+", word) or [""])]
    code = f"""source {bash_script}
      asked=; compopt() {{ [[ "$*" == "+o default +o bashdefault" ]] && asked=no; return 0; }}
      COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _torvio
      printf '%s\\n' "${{COMPREPLY[@]}}"; echo "files$asked" """
    output, errors, code = printed("bash", "-c", code, "bash", *words)
    require(errors == "" and code == 0, f"completion of {typed}: {errors}")
    lines = output.splitlines()
    return [line for line in lines[:-1] if line], lines[-1] == "files"


kinds = re.search(r"Kinds: ((?:.*,\n)*.*)", helps["map"])[1].replace(",", " ").split()
encodings = re.search(r"Encodings: (.*)", helps["map"])[1].replace(",", " ").split()
require(len(kinds) == 8 and "latin1" in encodings, f"kinds {kinds}, encodings {encodings}")
files, nothing = ([], True), ([], False)
for typed, expected in [
        (("",), (commands, False)),
        (("ma",), (["map"], False)),
        (("x",), nothing),
        (("--v",), (["--version"], False)),
        (("map", ""), files),
        (("map", "a"), files),
        (("map", "--off"), (["--offset"], False)),
        (("map", "--offset", ""), nothing),
        (("check", "--kind", ""), (kinds, False)),
        (("check", "--kind", "mac"), (["machine", "macro"], False)),
        (("check", "--kind=mac"), (["machine", "macro"], False)),
        (("check", "--kind="), (kinds, False)),
        (("check", "--kind=part", "--enc"), (["--encoding"], False)),
        (("check", "--ext", "sh"), (["sheet=."], False)),
        (("check", "--ext", "sheet=.n"), nothing),
        (("check", "--ext", "sheet=.nst", ""), files),
        (("check", "--jobs", ""), nothing),
        (("check", "--catalogue", ""), files),
        (("check", "--catalogue=x"), files),
        (("check", "--only", "s"), (["sound", "sound-with-losses"], False)),
        (("info", "--encoding", "cp85"), (["cp850"], False)),
        (("info", "a b", ""), files),
        (("draw", "-o", ""), files),
        (("draw", "-o", "x.svg", "--h"), (["--html", "--help"], False)),
        (("format", "tool-i"), (["tool-inventory"], False)),
        (("format", "clamp"), (["clamp-info"], False)),
        (("format", "sheet", "--as", ""), (["markdown", "kaitai"], False)),
        (("schema", "m"), (["machine", "material", "macro"], False)),
        (("from-json", ""), files),
        (("help", "sch"), (["schema"], False)),
        (("check", "--", "--k"), files),
        (("check", "--", "--kind", ""), files)]:
    found = completed(*typed)
    require((sorted(found[0]), found[1]) == (sorted(expected[0]), expected[1]), f"{typed} is completed as {found}")
for command in commands:
    require(sorted(completed(command, "-")[0]) == sorted(options[command]),
            f"bash completes options of {command} as {completed(command, '-')}, not {options[command]}")


# ---- shells at a terminal ---------------------------------------------------------------------------------
class Shell:
    """An interactive shell in which torvio prints its arguments."""

    SHOWN = "torvio() { printf 'ARG'; printf 'S<%s>' \"$@\"; printf 'END\\n'; }\n"

    def __init__(self, command, folder):
        environment = {"PATH": os.environ["PATH"], "HOME": str(folder), "TERM": "dumb", "LC_ALL": "C.UTF-8",
                       "ZDOTDIR": str(folder)}
        child, self.terminal = pty.fork()
        if child == 0:
            os.chdir(folder)
            os.execvpe(command[0], command, environment)
        self.child = child
        self.text = b""
        os.write(self.terminal, b"printf 'REA'; printf 'DY\\n'\n")
        self.wait_for(b"READY")

    def wait_for(self, text):
        end = time.monotonic() + 120
        while text not in self.text:
            if time.monotonic() > end or not select.select([self.terminal], [], [], 120)[0]:
                raise TimeoutError(f"{text!r} is not in {self.text!r}")
            self.text += os.read(self.terminal, 65536)

    def arguments(self, typed):
        """The arguments of torvio after these keys and a line feed."""
        self.text = b""
        os.write(self.terminal, typed.encode() + b"\n")
        self.wait_for(b"END\r\n")
        return re.findall(r"S<([^>]*)>", self.text.decode()[self.text.decode().rindex("ARGS<"):])

    def close(self):
        os.close(self.terminal)
        os.waitpid(self.child, 0)


def complete_at_terminal(command, folder):
    shell = Shell(command, folder)
    for typed, expected in [("torvio ch\t --ki\t mac\th\t my\t", ["check", "--kind", "machine", "my nest.sheet"]),
                            ("torvio draw -o pict\t", ["draw", "-o", "pictures.svg"]),
                            ("torvio check --ext she\tnst arch\t", ["check", "--ext", "sheet=.nst", "archive"]),
                            ("torvio map --encoding=latin\t -- --o\t", ["map", "--encoding=latin1", "--", "--odd"]),
                            ("torvio from\t pict\t", ["from-json", "pictures.svg"]),
                            ("torvio diff pict\t my\t --lim\t 3", ["diff", "pictures.svg", "my nest.sheet", "--limit", "3"]),
                            ("torvio schema tool\t", ["schema", "tool-inventory"])]:
        # A shell may leave the slash after a folder.
        found = [argument.rstrip("/") for argument in shell.arguments(typed)]
        require(found == expected, f"{command[0]} completes {typed!r} as {found}")
    shell.close()


with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    for file in ("my nest.sheet", "pictures.svg", "--odd"):
        (folder / file).write_text("")
    (folder / "archive").mkdir()
    (folder / ".bashrc").write_text(f"bind 'set bell-style none'\nPS1='$ '\nsource {bash_script}\n" + Shell.SHOWN)
    complete_at_terminal(["bash", "--rcfile", str(folder / ".bashrc"), "-i"], folder)
    if shutil.which("zsh"):
        (folder / ".zshrc").write_text(f"PS1='$ '\nfpath=({zsh_folder} $fpath)\nautoload -U compinit\ncompinit -u -D\n"
                                       "setopt NO_BEEP NO_PROMPT_SP\nunset zle_bracketed_paste\n" + Shell.SHOWN)
        require(printed("zsh", "-n", zsh_folder / "_torvio") == ("", "", 0), "zsh finds an error in its completion")
        complete_at_terminal(["zsh", "-i"], folder)
    else:
        print("zsh is not installed: its completion is only checked for the names of commands and options")

zsh_script = (zsh_folder / "_torvio").read_text(encoding="utf-8")
require(zsh_script.startswith("#compdef torvio\n"), "zsh does not know what its completion is for")
for command in commands:
    case = re.search(rf"(?s)\n      {command}\)\n(.*?) ;;\n", zsh_script)
    for option in options[command]:
        require(case and re.search(r"[*)']" + re.escape(option) + r"[=+]?\[", case[1]),
                f"the completion for zsh has no {option} of {command}")

sys.exit("\n".join(wrong) if wrong else 0)
