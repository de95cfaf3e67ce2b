#!/usr/bin/python3
"""Makes the site's pages out of the repository's documents: pages.py ROOT OUTPUT.

Every docs/*.md becomes a page, and so do CONTRIBUTING.md, CHANGELOG.md and the sources of each folder in examples/. A
document stays readable where it lies: links between documents are links between pages here, a link to a source leads
to the page that shows it. Doxygen does the rest; layout.xml, made here too, is its table of contents.
"""
import html
import pathlib
import re
import shutil
import sys

from header_filter import code_span

# The order of the pages; what is not named follows by name.
FIRST = ["first-program", "guide", "formats", "architecture", "reliability", "performance", "porting", "tool",
         "debugging", "packages"]
LAST = ["coverage", "contributing", "changelog"]
ROOMS = {
    "text": "Text", "stream": "Streams", "time": "Time", "units": "Quantities and units", "properties": "Settings tree",
    "properties/win32": "Settings files and stores", "registry": "Registry", "packing": "Typed records",
    "platform": "Platform services",
}
NAMESPACES = {
    "Quarn": "What is the same on every system.",
    "Quarn::Stream": "What stands at the beginning of a record.",
    "Quarn::Win32": "Settings files, and settings from the registry.",
    "Win32Quarn": "What wraps the system: registry, modules, locks, the log.",
    "QuarnUtil": "The library itself, as a module of the process.",
}
# The parts of a line: code, pictures, links, and what is between them.
PIECES = re.compile(r"(?P<code>`[^`]+`)|(?P<image>!\[(?P<label>[^\]]*)\]\((?P<path>[^)]+)\))|"
                    r"(?P<link>\[(?P<words>(?:`[^`]*`|[^\]`])+)\]\((?P<to>[^)\s]+)\))|[^`\[!]+|[\[!`]")
LANGUAGES = {".cpp": "cpp", ".h": "cpp", ".txt": "cmake", ".rc": "text"}


def slug(heading):
    """The id that a heading has where repositories are shown, so that one link serves both."""
    text = re.sub(r"[`*]", "", heading).strip().lower()
    return re.sub(r"[^\w\- ]", "", text).replace(" ", "-")


def prose(text):
    """Text as Doxygen takes it: what is a command for it, and none where the document lies, is none."""
    text = re.sub(r"%(?=\w)|\\(?=\w)|@(?=\w)|#(?=\w)|(?<![\w>])::(?=\w)", r"\\\g<0>", text).replace('"', "&quot;")
    # The library's own name is no request for a link to its namespace.
    return re.sub(r"\bQuarnUtil\b(?!::)", "%QuarnUtil", text)


class Site:
    def __init__(self, root, output):
        self.root = root
        self.output = output
        self.pages = {}  # path in the repository -> id
        documents = {p.stem: p for p in (root / "docs").glob("*.md")}
        documents |= {"contributing": root / "CONTRIBUTING.md", "changelog": root / "CHANGELOG.md"}
        documents = {name: path for name, path in documents.items() if path.exists()}
        middle = sorted(set(documents) - set(FIRST) - set(LAST))
        self.order = [n for n in FIRST if n in documents] + middle + [n for n in LAST if n in documents]
        self.documents = {name: documents[name] for name in self.order}
        self.pages = {path.relative_to(root).as_posix(): name for name, path in self.documents.items()}
        self.pages["docs/site/start.md"] = "index"
        self.pages["README.md"] = "index"
        self.pages["quarn"] = "reference"
        self.examples = {p.name: p for p in sorted((root / "examples").iterdir()) if p.is_dir()}
        self.titles = {}

    def target(self, link, document):
        """The link in the site for one in a document; None where the site does not show what it leads to."""
        if re.match(r"[a-z]+:", link):
            return link
        path, _, anchor = link.partition("#")
        file = (document.parent / path).resolve() if path else document
        where = file.relative_to(self.root).as_posix()
        if where in self.pages:
            page = self.pages[where]
            return f"@ref {page}-{anchor}" if anchor else f"@ref {page}"
        parts = pathlib.PurePosixPath(where).parts
        if parts[0] == "examples" and len(parts) > 1 and parts[1] in self.examples:
            return f"@ref example-{parts[1]}" + (f"-{slug(parts[2])}" if len(parts) > 2 else "")
        if where.startswith("quarn/") and where.endswith(".h"):
            return f"@ref {parts[-1]}"
        if not file.exists():
            sys.exit(f"{document}: there is no {link}")
        return None

    def line(self, text, document, page):
        """One line of prose: its links and its heading."""
        def piece(match):
            part = match[0]
            if match["code"]:
                return code_span(part)
            if match["image"]:
                label, path = match["label"], match["path"]
                file = document.parent / path
                shutil.copy(file, self.output / "html" / file.name)
                picture = f'<img class="drawing" src="{file.name}" alt="{html.escape(label)}"/>'
                return f'<div class="drawing-frame">{picture}</div>'
            if match["link"]:
                where = self.target(match["to"], document)
                label = PIECES.sub(piece, match["words"])
                return f"[{label}]({where})" if where else f"{label} (`{match['to'].lstrip('./')}`)"
            return prose(part)

        heading = re.match(r"(#+) (.*)", text)
        if heading:
            level, title = heading.groups()
            shown = PIECES.sub(piece, title)
            if level == "#":
                self.titles[page] = title
                return f"# {shown} {{#{'mainpage' if page == 'index' else page}}}"
            return f"{level} {shown} {{#{page}-{slug(title)}}}"
        return PIECES.sub(piece, text)

    def others(self, start):
        """Rows of the start page's table for the documents that it does not name itself."""
        rows = []
        for name, document in self.documents.items():
            if name not in LAST and f"../{name}.md)" not in start:
                text = document.read_text(encoding="utf-8")
                title, rest = re.search(r"^# (.*)\n([\s\S]*)", text, re.MULTILINE).groups()
                first = next((p for p in rest.split("\n\n") if re.match(r"\s*\w", p)), "")
                sentence = re.match(r"[^.:]*", " ".join(first.split()))[0].replace("|", "\\|")
                rows.append(f"| [{title}](../{name}.md) | {sentence} |")
        return rows

    def document(self, name, document):
        lines, fence = [], False
        source_text = document.read_text(encoding="utf-8")
        if name == "index":
            before, table = source_text.split("| [Reference]", 1)
            source_text = before + "".join(row + "\n" for row in self.others(source_text)) + "| [Reference]" + table
        for text in source_text.split("\n"):
            source = re.match(r"<!-- ([\w./-]+)( \[[^\]]*\])? -->$", text)
            if text.startswith("```"):
                fence = not fence
                lines.append(text)
            elif fence or text.startswith("    "):
                lines.append(text)
            elif source:
                up = "../" * len(document.parent.relative_to(self.root).parts)
                where = self.target(up + source[1], document)
                label = f"[{source[1]}]({where})" if where else source[1]
                lines += ['<div class="source">', label, "</div>"]
            else:
                lines.append(self.line(text, document, name))
        (self.output / f"{name}.md").write_text("\n".join(lines), encoding="utf-8")
        shutil.copy(document, self.output / "documents" / f"{name}.md")

    def example(self, name, folder):
        page = f"example-{name}"
        self.titles[page] = f"examples/{name}"
        lines = [f"# examples/{name} {{#{page}}}", ""]
        files = sorted(p for p in folder.iterdir() if p.suffix in LANGUAGES)
        for file in files:
            code = file.read_text(encoding="utf-8").rstrip("\n")
            lines += [f"## {file.name} {{#{page}-{slug(file.name)}}}", ""]
            lines += [f"```{LANGUAGES[file.suffix]}", code, "```", ""]
        (self.output / f"{page}.md").write_text("\n".join(lines), encoding="utf-8")

    def rooms(self):
        """The groups of the reference: a room each, described by the table in the architecture."""
        table = (self.root / "docs/architecture.md").read_text(encoding="utf-8")
        build = (self.root / "quarn/CMakeLists.txt").read_text(encoding="utf-8")
        headers = re.search(r"set\(public_headers\n(.*?)\n\)", build, re.DOTALL)
        nameless = {header.strip().rpartition("/")[0] for header in headers[1].split("\n")} - set(ROOMS) - {""}
        if nameless:
            sys.exit(f"docs/site/pages.py: the reference has no title for {' '.join(sorted(nameless))}")
        lines = []
        for room, title in ROOMS.items():
            row = re.search(rf"^\| `quarn/{room}/`[^|]*\| ([^|]*) \|", table, re.MULTILINE)
            if not row:
                sys.exit(f"docs/architecture.md: no row for the room quarn/{room}/")
            lines += [f"/// @defgroup room_{room.replace('/', '_')} {title}",
                      f"/// @brief {row[1][0].upper()}{row[1][1:]}.", ""]
        rooms = "".join(f"/// - @ref room_{room.replace('/', '_')}\n" for room in ROOMS)
        lines += [
            "/// @page reference Reference",
            "/// What every public header declares, room by room. `quarn/quarn_util.h` includes them all.",
            "/// What Win32 functions there are on Linux stands in `quarn/platform/win32_api.h` alone.",
            "///", rooms]
        for namespace, what in NAMESPACES.items():
            lines += [f"/// @namespace {namespace}", f"/// {what}", ""]
        (self.output / "rooms.dox").write_text("\n".join(lines), encoding="utf-8")

    def layout(self, template):
        def tab(page):
            return f'    <tab type="user" url="@ref {page}" title="{html.escape(self.titles[page])}"/>'
        tabs = [tab(name) for name in self.order if name not in LAST]
        tabs += ['    <tab type="usergroup" title="Examples">']
        tabs += [tab(f"example-{name}") for name in self.examples] + ["    </tab>"]
        late = [tab(name) for name in self.order if name in LAST]
        text = template.read_text(encoding="utf-8")
        text = text.replace("    <!-- pages -->", "\n".join(tabs)).replace("    <!-- last -->", "\n".join(late))
        (self.output / "layout.xml").write_text(text, encoding="utf-8")

    def write(self):
        shutil.rmtree(self.output, ignore_errors=True)
        for folder in ("html", "documents"): # what is copied to the site, and what the pages are made of
            (self.output / folder).mkdir(parents=True)
        for name, document in self.documents.items():
            self.document(name, document)
        self.document("index", self.root / "docs/site/start.md")
        for name, folder in self.examples.items():
            self.example(name, folder)
        self.rooms()
        self.layout(self.root / "docs/site/layout.xml")


if __name__ == "__main__":
    Site(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()).write()
