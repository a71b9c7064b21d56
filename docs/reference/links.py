# SPDX-License-Identifier: MIT
"""Finds dead links in a folder of pages: each file, each place in it, each entry of the search."""
import html
import re
import sys
from pathlib import Path
from urllib.parse import unquote

root = Path(sys.argv[1])
pages = {path: path.read_text(errors="replace") for path in root.rglob("*.html")}
places = {path: set(re.findall(r'\b(?:id|name)="([^"]*)"', text)) for path, text in pages.items()}
links = [(path, link) for path, text in pages.items()
         for link in re.findall(r'\b(?:href|src)="([^"]*)"', text)]
links += [(path, link) for path in root.glob("search/*_*.js")
          for link in re.findall(r"\['(\.\./[^']*)'", path.read_text())]
dead = set()
for path, link in links:
    link = unquote(html.unescape(link))
    if re.match(r"https?:|javascript:|mailto:|data:|\$", link):
        continue
    file, _, place = link.partition("#")
    target = (path.parent / file).resolve() if file else path
    if not target.exists():
        dead.add(f"{path.relative_to(root)}: no {link}")
    elif place and target in places and place not in places[target]:
        dead.add(f"{path.relative_to(root)}: no place {link}")
print(*sorted(dead), sep="\n", end="\n" if dead else "")
print(f"{len(pages)} pages, {len(links)} links, {len(dead)} dead")
sys.exit(bool(dead) or len(pages) < 100 or not any(path.suffix == ".js" for path, _ in links))
