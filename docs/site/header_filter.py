#!/usr/bin/python3
"""Turns the comments of a public header into ones that Doxygen reads: header_filter.py HEADER, to standard output.

The headers carry ordinary comments, with these meanings:

- The comment on top describes the file, and the classes or the namespace that it begins with ("Quarn::Time: ...").
- A comment directly above a declaration belongs to it, and to those that follow without an empty line or a comment
  of their own between them, where they have the same name or the comment says that it means them: it names them, or
  holds a word such as "each", "both" or "these". The comparisons go with operator==, an operation's assignment with
  the operation, the assignment from a type with the constructor from it. What the compiler makes (`= default`) has a
  comment of its own, or says that it is so made.
- A comment behind a declaration on its last line belongs to that one, too.
- A comment between empty lines opens a section: it belongs to the class around it, or to the file.

What is private, deleted or in a namespace `detail` is left as it is; Doxygen shows none of it.
"""
import re
import sys

TOKEN = re.compile(r"""
    (?P<comment>//[^\n]*) | (?P<directive>^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*) |
    (?P<string>"(?:[^"\\\n]|\\.)*" | '(?:[^'\\\n]|\\.)+') |
    (?P<word>[A-Za-z_]\w*) | (?P<number>\d[\w.']*) | (?P<punctuation>::|->|[^\s\w])
    """, re.MULTILINE | re.VERBOSE)
NAMES = re.compile(r"(?:Quarn|Win32Quarn|QuarnUtil)(?:::\w+)+")
DECLARES_BODY = {"const", "noexcept", "override", "final"}


class Statement:
    def __init__(self, scope, first):
        self.scope = scope
        self.tokens = [first]
        self.name = None
        self.access = scope.access
        self.shown = scope.shown and scope.access != "private"

    def texts(self):
        return [token.group() for token in self.tokens]


class Scope:
    def __init__(self, kind, name, parent, access="public", statement=None):
        self.kind = kind
        self.name = name
        self.parent = parent
        self.access = access
        self.statement = statement
        # Whether a reader of the reference gets to see what is declared here.
        self.shown = name != "detail" and (parent is None or parent.shown and parent.access != "private")

    def path(self):
        above = self.parent.path() if self.parent else ""
        return f"{above}::{self.name}".strip(":") if self.name else above


def outside_templates(tokens):
    """The words and signs that stand in no template's angle brackets."""
    depth = 0
    for index, text in enumerate(tokens):
        if text == "<" and index and (tokens[index - 1] == "template" or depth):
            depth += 1
        elif text == ">" and depth:
            depth -= 1
        elif not depth:
            yield text


def kind_of(tokens):
    texts = [text for text in outside_templates(tokens) if text not in ("inline", "template", "extern", "QUARN_API")]
    if texts[:1] == ["requires"] and "(" in texts:
        depth = 0
        for index, text in enumerate(texts):
            depth += (text == "(") - (text == ")")
            if text == ")" and depth == 0:
                texts = texts[index + 1:]
                break
    first = texts[0] if texts else ""
    if first in ("namespace", "enum", "using", "friend", "static_assert", "concept", "typedef"):
        return first
    if first in ("class", "struct", "union"):
        return "class"
    if "operator" in texts or "(" in texts:
        return "function"
    return "variable"


def name_of(kind, tokens):
    texts = [text for text in outside_templates(tokens) if text not in ("inline", "QUARN_API")]
    if kind == "namespace":
        return "".join(texts[1:])
    if kind in ("class", "enum"):
        keywords = ("class", "struct", "union", "enum", "extern", "template")
        names = [t for t in texts if re.match(r"\w", t) and t not in keywords]
        return names[0] if names else ""
    if re.match(r"(virtual )?void \( \* ", " ".join(texts)): # returns a pointer to a function
        return texts[texts.index("*") + 1]
    if "operator" in texts:
        at = texts.index("operator")
        end = texts.index("(", at + 2) if "(" in texts[at + 2:] else len(texts)
        return "operator" + "".join(texts[at + 1:end])
    if kind == "function":
        at = texts.index("(")
        if texts[0] == "requires":
            at = len(texts) - 1 - texts[::-1].index("(")
        return ("~" if at > 1 and texts[at - 2] == "~" else "") + texts[at - 1]
    end = next((i for i, t in enumerate(texts) if t in ("=", "{", "[", ";")), len(texts))
    return texts[end - 1] if end else ""


class Header:
    def __init__(self, text):
        self.text = text
        self.lines = text.split("\n")
        self.tokens = [m for m in TOKEN.finditer(text)]
        self.statements = []
        self.classes = {}
        self.namespaces = set()
        self.comments = {}  # line -> text, of comments that stand alone on their line
        self.trailing = {}  # line -> match
        for token in self.tokens:
            if token.lastgroup == "comment":
                line = self.line(token.start())
                if self.lines[line].strip().startswith("//"):
                    self.comments[line] = self.lines[line].strip()[2:]
                else:
                    self.trailing[line] = token
        self.parse()

    def line(self, offset):
        return self.text.count("\n", 0, offset)

    def parse(self):
        code = [t for t in self.tokens if t.lastgroup not in ("comment", "directive")]
        scope = Scope("file", "", None)
        current = None
        at = 0

        def skip_braces(index):
            depth = 0
            while True:
                depth += (code[index].group() == "{") - (code[index].group() == "}")
                if depth == 0:
                    return index
                index += 1

        def finish(last):
            nonlocal current
            current.end = last.end()
            current.kind = kind_of(current.texts())
            current.name = name_of(current.kind, current.texts())
            self.statements.append(current)
            current = None

        parens = 0
        while at < len(code):
            token, text = code[at], code[at].group()
            if current is None:
                if text == "}":
                    if scope.statement is not None:
                        scope.statement.closed = token.start()
                    scope = scope.parent
                    at += 1
                    if at < len(code) and code[at].group() == ";":
                        at += 1
                    continue
                if text in ("public", "protected", "private") and code[at + 1].group() == ":":
                    scope.access = text
                    at += 2
                    continue
                if text == ";":
                    at += 1
                    continue
                current = Statement(scope, token)
                parens = 0
                if scope.kind != "enum":
                    at += 1
                    continue
            else:
                current.tokens.append(token)
            parens += (text in "([") - (text in ")]")
            if scope.kind == "enum":
                following = code[at + 1].group()
                if (text == "," and not parens) or following == "}":
                    current.end = token.end()
                    current.kind, current.name = "value", current.texts()[0]
                    self.statements.append(current)
                    current = None
            elif text == ";" and not parens:
                finish(token)
            elif text == "{" and not parens:
                kind = kind_of(current.texts()[:-1])
                if kind in ("namespace", "class", "enum"):
                    current.tokens.pop()
                    name = name_of(kind, current.texts())
                    statement = current
                    finish(token)
                    if kind == "class":
                        self.classes[f"{scope.path()}::{name}".strip(":")] = statement
                    if kind == "namespace":
                        self.namespaces.add(f"{scope.path()}::{name}".strip(":"))
                    access = "private" if "class" in outside_templates(statement.texts()) else "public"
                    scope = Scope(kind, name, scope, access, statement)
                else:
                    before = current.texts()[-2]
                    body = before in DECLARES_BODY or before in (")", "}")
                    current.tokens.pop()
                    at = skip_braces(at)
                    if body and kind == "function":
                        finish(code[at])
                    else:
                        current.tokens.append(code[at])  # its closing brace
            at += 1

    def block_above(self, line):
        """The comment that ends directly above a line: its first line and its lines."""
        first = line
        while first - 1 in self.comments:
            first -= 1
        return first, [self.comments[i] for i in range(first, line)]


ESCAPED = re.compile(r"[\\@<>&#%*]|(?<!\w)_|~(?=~)|(?<!\w)::")


def code_span(text):
    """A piece of code as it stands: in backticks Doxygen would still see commands."""
    inner = text[1:-1]
    if not re.search(r'[%\\@&<>#"$]|^::', inner):
        return text
    # Escapes mean nothing between quotation marks.
    return "<code>" + re.sub(r"[%\\@&<>#$]|(?<!\w)::", r"\\\g<0>", inner).replace('"', "&quot;") + "</code>"


def plain(text):
    # The library's own name is no request for a link to its namespace.
    return re.sub(r"\bQuarnUtil\b(?!::)", "%QuarnUtil", ESCAPED.sub(r"\\\g<0>", text).replace('"', "&quot;"))


def prose(text):
    """Text of a comment that Doxygen takes as it is: nothing in it is a command but code in backticks."""
    parts = re.split(r"(`[^`]+`)", text)
    return "".join(code_span(part) if part.startswith("`") and len(part) > 2 else plain(part) for part in parts)


def markdown(lines):
    """The lines of a comment as Markdown, code (indented by two or more) in fences."""
    lines = [line[1:] if line.startswith(" ") else line for line in lines]
    result, code, in_list = [], [], False

    def flush():
        while code and not code[-1]:
            code.pop()
        if code:
            indent = min(len(l) - len(l.lstrip()) for l in code if l)
            result.extend(["", "```cpp"] + [l[indent:] for l in code] + ["```", ""])
            code.clear()

    for index, line in enumerate(lines):
        is_item = re.match(r"\s*- ", line)
        if not line.strip():
            if code:
                code.append("")
                continue
            result.append("")
            in_list = False
        elif line.startswith("  ") and not is_item and not in_list:
            code.append(line)
        else:
            flush()
            in_list = in_list or bool(is_item)
            result.append(line)
    flush()
    # Backticks may span lines: what is no code is escaped paragraph by paragraph.
    out, paragraph, fenced = [], [], False

    def end_paragraph():
        if paragraph:
            out.extend(prose("\n".join(paragraph)).split("\n"))
            paragraph.clear()

    for line in result:
        if line.startswith("```"):
            end_paragraph()
            fenced = not fenced
            out.append(line)
        elif fenced:
            out.append(line)
        elif not line:
            end_paragraph()
            out.append("")
        else:
            paragraph.append(line)
    end_paragraph()
    return out


PLURAL = re.compile(r"\b(each|both|these|all of them|they|two|three|four)\b", re.IGNORECASE)
COMPARISONS = {"operator" + sign for sign in ("==", "!=", "<", "<=", ">", ">=")}


def parameters(statement):
    texts = statement.texts()
    begin = texts.index("(")
    depth = 0
    for index in range(begin, len(texts)):
        depth += (texts[index] == "(") - (texts[index] == ")")
        if depth == 0:
            inner = texts[begin + 1:index]
            return tuple(inner[:-1] if inner and re.match(r"\w", inner[-1]) and len(inner) > 1 else inner)
    return ()


def means(comment, owner, statement):
    """Whether the comment above `owner` is about `statement`, too."""
    mine, other = owner.name, statement.name
    if mine == other or mine == "operator==" and other in COMPARISONS or mine + "=" == other:
        return True
    if other.startswith("~"):
        return False
    if other == "operator=" and mine == owner.scope.name:
        return parameters(owner) == parameters(statement)
    text = " ".join(comment)
    return bool(PLURAL.search(text)) or re.search(rf"\b{re.escape(other)}\b", text) is not None


def enumerator_numbers(header):
    """What each enumerator stands for: the text of its value, or one more than the number before."""
    numbers, following = {}, {}
    for statement in header.statements:
        if statement.kind == "value":
            texts = statement.texts()
            value = "".join(texts[2:]).strip(",") if "=" in texts else following.get(statement.scope, "0")
            numbers[statement] = value
            is_number = re.fullmatch(r"-?(0[xX][0-9a-fA-F]+|[0-9]+)", value)
            following[statement.scope] = str(int(value, 0) + 1) if is_number else f"after {value}"
    return numbers


def documented(header):
    """(statement, lines of its documentation, whether they are another's) of what the reference shows."""
    shared, owner, previous = None, None, None
    for statement in header.statements:
        scope = statement.scope
        line = header.line(statement.tokens[0].start())
        last = header.line(statement.end - 1)
        first, above = header.block_above(line)
        if above:
            shared, owner = above, statement
            own = True
        else:
            own = False
            follows = previous is not None and previous.scope is scope and previous.access == statement.access
            if not follows or line != previous.last + 1:
                shared = None
        statement.first, statement.last, statement.comment_first = line, last, first
        is_default = statement.texts()[-3:-1] == ["=", "default"]
        lines = list(shared) if shared and (own or not is_default and means(shared, owner, statement)) else []
        behind = header.trailing.get(last)
        if behind is not None and statement.kind not in ("namespace",) and behind.start() >= statement.end - 1:
            lines += ([""] if lines else []) + [behind.group()[2:]]
        else:
            behind = None
        statement.behind = behind
        hidden = "delete" in statement.texts()[-3:] or statement.kind in ("namespace", "friend", "static_assert")
        # An alias hands on what the base documents.
        hidden = hidden or statement.kind == "using" and "=" not in statement.texts()
        hidden = hidden or not statement.shown
        hidden = hidden or statement.kind == "class" and ";" == header.text[statement.end - 1]
        if not hidden:
            yield statement, lines, not own
        if statement.kind in ("class", "enum", "namespace"):
            shared = None
        previous = statement


def converted(text, room="", path=""):
    header = Header(text)
    top = []
    while len(top) in header.comments:
        top.append(header.comments[len(top)])
    subjects = [] if not top else [
        name for name in NAMES.findall("\n".join(top).split(":\n")[0].split(": ")[0])
        if name in header.classes or name in header.namespaces]
    group = [f"@ingroup {room}"] if room else []
    attached = set(range(len(top)))
    docs = {}
    drop = []
    numbers = enumerator_numbers(header)
    for statement, lines, _ in documented(header):
        attached.update(range(statement.comment_first, statement.first))
        for i in range(statement.first, statement.last + 1):
            attached.add(i)
        if lines:
            docs[statement] = markdown(lines)
        elif statement.kind == "value" and statement.scope.statement in docs:
            docs[statement] = [f"The number {numbers[statement]}."]
        elif statement.texts()[-3:-1] == ["=", "default"]:
            docs[statement] = ["As the compiler makes it."]
        elif statement.name.startswith("~"):
            docs[statement] = ["Destroys it."]
        elif statement.kind == "class":
            path_name = f"{statement.scope.path()}::{statement.name}"
            docs[statement] = [] if path_name in subjects else None
        if statement.behind is not None:
            drop.append(statement.behind.span())
    sections = {}  # of a class's name, or of the file ("")
    line = len(top)
    while line < len(header.lines):
        if line in header.comments and line not in attached:
            end = line
            while end + 1 in header.comments:
                end += 1
            follows = header.lines[end + 1].strip() if end + 1 < len(header.lines) else ""
            if not follows and not header.comments[line].startswith((" NOLINT", " ----")):
                offset = sum(len(l) + 1 for l in header.lines[:line])
                owner = None
                for s in header.statements:
                    if s.kind == "class" and hasattr(s, "closed") and s.end <= offset < s.closed:
                        owner = s
                sections.setdefault(owner, []).append([header.comments[i] for i in range(line, end + 1)])
            line = end
        line += 1

    general = markdown(top)
    outer = [paragraph for block in sections.get(None, []) for paragraph in [""] + markdown(block)]
    output = []

    def comment(lines, indent=""):
        output.extend(f"{indent}/// {line}".rstrip() for line in lines)

    comment([f"@file {path}"] + general + outer)
    output.append("")
    for subject in subjects:
        if subject in header.namespaces:
            comment([f"@namespace {subject}"] + group + general + outer)
            output.append("")

    at_line = {}
    for statement, lines in docs.items():
        if lines is None:
            continue
        extra = []
        if statement.kind == "class":
            name = f"{statement.scope.path()}::{statement.name}"
            if name in subjects:
                lines = general + ([""] + lines if lines else [])
            for block in sections.get(statement, []):
                extra += [""] + markdown(block)
        grouped = ("class", "function", "enum", "variable", "using")
        if statement.scope.kind in ("namespace", "file") and statement.kind in grouped:
            lines = group + lines
        at_line[statement.first] = lines + extra
    source = list(header.text)
    for begin, end in drop:
        source[begin:end] = " " * (end - begin)
    source = "".join(source)
    # Doxygen finds no name in a function that returns a pointer to a function.
    source = re.sub(r"void \(\*(\w+)(\([^()]*\)(?: const)?)\)\(\)", r"auto \1\2 -> void (*)()", source)
    for number, line in enumerate(source.split("\n")):
        if number in header.comments:
            continue
        if number in at_line:
            comment(at_line[number], re.match(r"\s*", line).group())
        output.append(line.rstrip())
    return "\n".join(output)


def report_shared(paths):
    """Lists what takes its documentation from the declaration above: for the eyes of who writes headers."""
    for path in paths:
        with open(path, encoding="utf-8") as file:
            header = Header(file.read())
        for statement, lines, shared in documented(header):
            if shared and lines and statement.behind is None:
                print(f"{path}:{statement.first + 1}: {statement.scope.path()}::{statement.name}: {lines[0].strip()}")


def main():
    if sys.argv[1] == "--shared":
        report_shared(sys.argv[2:])
        return
    with open(sys.argv[1], encoding="utf-8") as file:
        text = file.read()
    found = re.search(r"quarn/((?:(.*)/)?[^/]+)$", sys.argv[1])
    room = (found.group(2) or "library").replace("/", "_") if found else ""
    sys.stdout.write(converted(text, f"room_{room}" if room else "", found.group(0) if found else sys.argv[1]))


if __name__ == "__main__":
    main()
