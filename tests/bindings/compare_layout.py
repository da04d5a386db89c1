"""Fails unless the structures and constants of a C header lie as a list says, on 64-bit machines:

    compare_layout.py HEADER LIST [--update]

With --update the list is written anew. It ends with 77 without cffi (Debian's python3-cffi), and on other machines.
"""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "bindings/c/samples"))
from show_playlists import ffi


def layout(header: pathlib.Path) -> list[str]:
    """A line for each constant, and for each field of each structure."""
    lines = []
    names = ffi.list_types()[0]
    for name in sorted(names):
        kind = ffi.typeof(name)
        if kind.kind != "struct" or kind.fields is None:
            continue
        lines.append(f"{name} {ffi.sizeof(kind)}")
        for field, at in kind.fields:
            lines.append(f"{name}.{field} {at.offset} {at.type.cname}")
    for line in header.read_text().splitlines():
        words = line.split("///")[0].rstrip(", ").split(" = ")
        if line.startswith("    VELHLS_") and len(words) == 2:
            lines.append(f"{words[0].strip()} {words[1].strip()}")
    return lines


def main(header: str, expected: str, update: bool) -> int:
    if ffi.sizeof("void*") != 8:
        print("skipped: the list is that of 64-bit machines")
        return 77
    seen = layout(pathlib.Path(header))
    path = pathlib.Path(expected)
    if update:
        path.write_text("\n".join(seen) + "\n")
        return 0
    known = path.read_text().splitlines()
    for line in seen:
        if line not in known:
            print(f"in the header, and not in the list: {line}")
    for line in known:
        if line not in seen:
            print(f"in the list, and not in the header: {line}")
    if seen != known:
        print("error: the layout changed (see docs/stability.md); after a change that is meant, make the list anew with the "
              "target update_layout_of_c")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2], "--update" in sys.argv[3:]))
