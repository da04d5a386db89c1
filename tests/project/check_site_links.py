"""check_site_links.py FOLDER: fails unless each link of the HTML pages in FOLDER that leads to no other server leads to a
file there, and its anchor to one in that file."""

import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit


class Page(HTMLParser):
    """The links of a page, and the anchors that others may link to."""

    def __init__(self, text):
        super().__init__()
        self.links = []
        self.anchors = set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src") and value:
                self.links.append(value)
            if name == "id" or (tag == "a" and name == "name"):
                self.anchors.add(value)


def why_dead(page, link, pages):
    """Empty when the link leads somewhere."""
    parts = urlsplit(link)
    if parts.scheme or parts.netloc:
        return ""
    target = (page.parent / unquote(parts.path)).resolve() if parts.path else page
    if not target.is_file():
        return "no such file"
    if parts.fragment and target in pages and unquote(parts.fragment) not in pages[target].anchors:
        return "no such anchor"
    return ""


def main():
    folder = Path(sys.argv[1]).resolve()
    pages = {path: Page(path.read_text(encoding="utf-8")) for path in sorted(folder.rglob("*.html"))}
    count = sum(len(page.links) for page in pages.values())
    dead = [(path, link, why) for path, page in pages.items() for link in page.links
            if (why := why_dead(path, link, pages))]
    for path, link, why in dead:
        print(f"{path.relative_to(folder)}: {link}: {why}")
    print(f"{len(dead)} of {count} links are dead")
    sys.exit(1 if dead or count == 0 else 0)


main()
