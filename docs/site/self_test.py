#!/usr/bin/python3
"""Tries the site's checks on small headers and pages, right ones and wrong ones: self_test.py, in the repository."""
import html
import pathlib
import re
import subprocess
import sys
import tempfile

import header_filter

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

DOCUMENTED = """// Quarn::Pump: a pump. One thread at a time.
#pragma once

namespace Quarn {

%s
class Pump
{
public:
%s
};
%s

} // namespace Quarn
"""


def header(members="", own="", after=""):
    return DOCUMENTED % (own, members, after)


SIGNS = '"%s=%d" or "%%", a \\n @all <b> & #1 `x < y` and `"%s"\\n &amp; <X>` ::Win32Name `::Other` *p _q "a*b*c" $HOME (QuarnUtil)'
RIGHT = {
    "a comment above": header("    // Starts it.\n    void Start();"),
    "a comment behind": header("    void Start(); // starts it"),
    "one for all overloads": header("    // Starts it.\n    void Start();\n    void Start(int speed);"),
    "one for both, which says so": header("    // Both take a while.\n    void Start();\n    void Stop();"),
    "one that names the other": header("    // Starts it, until Stop().\n    void Start();\n    void Stop();"),
    "comparisons": header("    // Equal are equal speeds.\n    bool operator==(Pump const& o) const;\n    bool operator!=(Pump const& o) const;"),
    "made by the compiler": header("    Pump() = default;\n    Pump(Pump const& other) = default;\n    ~Pump();"),
    "deleted": header("    void Start() = delete;"),
    "private": header("    // Starts it.\n    void Start();\nprivate:\n    void Turn();\n    int m_speed = 0;"),
    "a body with braces": header("    // Starts it.\n    Pump() : m_speed{0} { if (true) { Turn(); } }\nprivate:\n    void Turn();\n    int m_speed;"),
    "signs that are commands elsewhere": header(f"    // {SIGNS}\n    void Start();"),
    "a pointer to a function": header("    // The function of that number.\n    virtual void (*Find(int ordinal) const)() = 0;"),
    "in a namespace detail": header("", after="namespace detail {\nvoid Turn();\n}"),
}
WRONG = {
    "no comment": header("    void Start();"),
    "a comment with an empty line behind it": header("    // Pumps start slowly.\n\n    void Start();"),
    "the comment of another": header("    // Starts it.\n    void Start();\n    void Stop();"),
    "an empty line before an overload": header("    // Starts it.\n    void Start();\n\n    void Start(int speed);"),
    "a data member": header("    int speed = 0;"),
    "an enumeration": header("    enum Kind { Small = 0 };"),
    "a free function": header(after="void Start(Pump& pump);"),
    "a free operator": header(after="bool operator<(Pump const& a, Pump const& b);"),
    "a class": header(after="class Valve\n{\npublic:\n    // Opens it.\n    void Open();\n};"),
    "protected": header("protected:\n    void Turn();"),
    "behind what is private": header("private:\n    void Turn();\npublic:\n    void Start();"),
    "inside another class": header("    // A part.\n    struct Wheel\n    {\n        void Turn();\n    };"),
    "a template": header("    template<typename T>\n    void Start(T speed);"),
}
# Pages, as pages.py leaves them.
RIGHT_PAGES = {"a reference": "# One {#one}\n\n## Two {#one-two}\n\n[two](@ref one-two)\n"}
WRONG_PAGES = {"a reference to nowhere": "# One {#one}\n\n[two](@ref one-two)\n",
               "two places of one name": "# One {#one}\n\n## Two {#one-two}\n\n## Two {#one-two}\n"}


def verdict(name, text):
    with tempfile.TemporaryDirectory() as folder:
        source = pathlib.Path(folder) / name
        source.write_text(text)
        settings = (ROOT / "docs/site/Doxyfile").read_text() + f"""
            LAYOUT_FILE =
            HAVE_DOT = NO
            SEARCHENGINE = NO
            GENERATE_TREEVIEW = NO
            HTML_EXTRA_STYLESHEET =
            OUTPUT_DIRECTORY = {folder}
            INPUT = {source}
            """
        result = subprocess.run(["doxygen", "-"], input=settings, text=True, capture_output=True, cwd=ROOT)
        pages = [page.read_text(encoding="utf-8") for page in pathlib.Path(folder).glob("site/class*.html")]
        result.shown = html.unescape(re.sub(r"<[^>]*>", "", " ".join(pages)))
        return result


def main():
    mistakes = 0
    for cases, name, expected in ((RIGHT, "pump.h", True), (WRONG, "pump.h", False),
                                  (RIGHT_PAGES, "page.md", True), (WRONG_PAGES, "page.md", False)):
        for case, text in cases.items():
            result = verdict(name, text)
            if (result.returncode == 0) != expected:
                mistakes += 1
                print(f"{case}: {'refused' if expected else 'taken'}\n{text}\n{result.stderr}", file=sys.stderr)
    # A comment is shown as it stands.
    shown = verdict("pump.h", header(f"    // {SIGNS}\n    void Start();")).shown
    if SIGNS.replace("`", "") not in shown:
        mistakes += 1
        print(f"the comment '{SIGNS}' is shown otherwise: {shown}", file=sys.stderr)
    # What the filter makes of a comment, line by line.
    made = header_filter.converted(
        "// Quarn::Pump: a pump.\n//\n//     Pump p;   // <one>\n#pragma once\nnamespace Quarn {\nclass Pump\n{\npublic:\n"
        "    // Starts it: `a < b`, 50 % of c < d.\n    void Start();\n    void Start(int); // at a speed\n};\n}\n")
    expected = ["class Pump", "{", "public:", "    /// Starts it: <code>a \\< b</code>, 50 \\% of c \\< d.", "    void Start();",
                "    /// Starts it: <code>a \\< b</code>, 50 \\% of c \\< d.", "    ///", "    /// at a speed", "    void Start(int);", "};", "}", ""]
    if made.split("\n")[-len(expected):] != expected or "/// Pump p;   // <one>" not in made:
        mistakes += 1
        print(f"the filter makes this:\n{made}", file=sys.stderr)
    print(f"{len(RIGHT) + len(WRONG) + len(RIGHT_PAGES) + len(WRONG_PAGES) + 2} cases, {mistakes} mistakes")
    sys.exit(1 if mistakes else 0)


if __name__ == "__main__":
    main()
