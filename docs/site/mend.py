#!/usr/bin/python3
"""Mends what Doxygen 1.9.4 gets wrong in the links of the site it has made: mend.py SITE.

- The tree's tables look for a function in the page of its header, although it stands in that of its room.
- The page of a class whose only nested classes are private offers a list of them.
"""
import pathlib
import re
import sys

site = pathlib.Path(sys.argv[1])
where = {}
for page in site.glob("group__*.html"):
    for place in re.findall(r'id="(ga[0-9a-f]+)"', page.read_text(encoding="utf-8")):
        where[place] = page.name
for table in site.glob("*_8h.js"):
    text = table.read_text(encoding="utf-8")
    mended = re.sub(r'"\w+_8h\.html#(ga[0-9a-f]+)"',
                    lambda match: f'"{where[match[1]]}#{match[1]}"' if match[1] in where else match[0], text)
    if mended != text:
        table.write_text(mended, encoding="utf-8")
for page in list(site.glob("class*.html")) + list(site.glob("struct*.html")):
    text = page.read_text(encoding="utf-8")
    if 'href="#nested-classes"' in text and 'id="nested-classes"' not in text and 'name="nested-classes"' not in text:
        page.write_text(re.sub(r'<a href="#nested-classes">[^<]*</a>( &#124;\s*)?', "", text), encoding="utf-8")
