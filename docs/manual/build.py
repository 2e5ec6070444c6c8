"""Builds the manual: build.py FOLDER

Doxygen makes FOLDER/html/index.html of the public headers, the pages in docs/, and the programs that these pages link
to, and FOLDER/xml for tests. Any warning is an error.
"""
import pathlib
import re
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
import search  # noqa: E402
from pages import Anchors, Page, page_id, slug, source_id, title_of  # noqa: E402
from records import ROOT  # noqa: E402

FRONT = "docs/manual/front.md"
THEME = pathlib.Path("/usr/share/doxygen-awesome-css/doxygen-awesome.css")


def all_pages():
    return [str(path.relative_to(ROOT)) for path in
            [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md")), *sorted((ROOT / "docs/formats").glob("*.md")),
             ROOT / "HACKING.md", ROOT / "CHANGELOG.md", ROOT / FRONT]]


def sections(front):
    """The front page with a page for each of its sections, which the tree of the manual shows as folders."""
    head, *parts = re.split(r"^## ", front, flags=re.M)
    out, more = [head.replace("{#front}", "{#mainpage}")], []
    for part in parts:
        title, body = part.split("\n", 1)
        title = re.sub(r" *\{#.*\}", "", title)
        name = "section_" + slug(title).replace("-", "_")
        out.append(f'<div class="section">\\subpage {name} "{title}"</div>\n{body}')
        more.append(f"/** @page {name} {title}\n\n" + body.replace("\\ref", "\\subpage") + "\n*/\n")
    return "".join(out), "\n".join(more)


def main():
    folder = pathlib.Path(sys.argv[1]).resolve()
    version = re.search(r"project\(OldTorvIO VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
    made = folder / "input"
    for one in (made, folder / "html", folder / "xml"):
        shutil.rmtree(one, ignore_errors=True)
    made.mkdir(parents=True)
    pages, sources, wrong = all_pages(), set(), []
    for path in pages:
        page = Page(path, pages, sources)
        text = page.converted()
        wrong += page.missing
        if path == FRONT:
            linked = set(re.findall(r"\\ref (\S+)", text))
            wrong += [f"{FRONT} has no link to {one}" for one in pages if one != FRONT and page_id(one) not in linked]
            text, more = sections(text)
            (made / "sections.dox").write_text(more, encoding="utf-8")
        (made / (page.id + ".md")).write_text(text, encoding="utf-8")
    listing = ["/** @page sources Example programs and sources\n"]
    listing += [f'- \\subpage {source_id(path)} "{path}"' for path in sorted(sources)] + ["*/"]
    for path in sorted(sources):
        # Text that is no program is shown as it is.
        command = "include" if path.endswith((".c", ".cpp", ".h", ".py", ".cs", ".js")) else "verbinclude"
        listing.append(f"/** @page {source_id(path)} {path}\n@{command} {path}\n*/")
    (made / "sources.dox").write_text("\n".join(listing), encoding="utf-8")
    if wrong:
        sys.exit("\n".join(wrong))
    if not THEME.exists():
        sys.exit(f"{THEME} is missing: install doxygen-awesome-css")

    extra = [HERE / "manual.js", *sorted((ROOT / "docs" / "schema").glob("*.json")), ROOT / "docs" / "nest.svg"]
    settings = (HERE / "Doxyfile").read_text(encoding="utf-8") + "\n".join([
        f"PROJECT_NUMBER = {version}",
        f"OUTPUT_DIRECTORY = {folder}",
        f"INPUT = {made} {ROOT}/include/OldTorvIO.h {ROOT}/include/OldTorvIO {ROOT}/torvio/include/torvio.h",
        f"STRIP_FROM_PATH = {ROOT}/include {ROOT}/torvio/include {made}",
        f"STRIP_FROM_INC_PATH = {ROOT}/include {ROOT}/torvio/include",
        f"FILTER_PATTERNS = *.h=\"python3 {HERE}/headers.py\"",
        f"USE_MDFILE_AS_MAINPAGE = {made}/front.md",
        f"IMAGE_PATH = {ROOT}/docs",
        f"EXAMPLE_PATH = {ROOT}",
        f"LAYOUT_FILE = {HERE}/layout.xml",
        f"HTML_HEADER = {HERE}/header.html",
        f"HTML_EXTRA_STYLESHEET = {THEME} {HERE}/manual.css",
        "HTML_EXTRA_FILES = " + " ".join(map(str, extra)), ""])
    ran = subprocess.run(["doxygen", "-"], input=settings, text=True, encoding="utf-8", cwd=folder, stderr=subprocess.PIPE)
    # Doxygen counts its warnings only at the end.
    warnings = [line for line in ran.stderr.splitlines() if line.strip()]
    if warnings or ran.returncode != 0:
        sys.exit("\n".join(warnings) or f"doxygen failed: {ran.returncode}")
    entries = search.symbols(folder)
    for path in pages:
        if path != FRONT:
            entries += search.sections(path, page_id(path), title_of(path), Anchors())
    search.write(folder, entries)
    print(folder / "html" / "index.html")


if __name__ == "__main__":
    main()
