"""The same as show_playlists.c from Python by cffi: what playlists hold, and what RFC 8216 says of them.

    show_playlists.py [--expect OUTPUT] LIBRARY FILE...

With --expect it prints nothing and fails unless that file holds what it would print. It ends with 77 without cffi
(Debian's python3-cffi).
"""
import pathlib
import sys

try:
    import cffi
except ImportError:
    print("skipped: there is no cffi for this Python (Debian's python3-cffi)")
    sys.exit(77)


def declarations(header: pathlib.Path) -> str:
    """What cffi reads of the header: neither comments nor what is for the preprocessor and for C++."""
    lines = []
    in_cpp = False
    for line in header.read_text().replace("\\\n", "").splitlines():
        if line.startswith("#"):
            in_cpp = line == "#ifdef __cplusplus"
        elif not in_cpp:
            lines.append(line.split("///")[0].replace("VELHLS_C_API ", ""))
    return "\n".join(lines)


ffi = cffi.FFI()
ffi.cdef(declarations(pathlib.Path(__file__).parent.parent / "velhls.h"))


def text_of(string) -> str:
    """A copy of what a velhls_string looks at."""
    return ffi.buffer(string.data, string.length)[:].decode(errors="replace")


def structure(name: str):
    """An empty structure that says its size."""
    made = ffi.new(name + "*")
    made.size = ffi.sizeof(name)
    return made


class Inspection:
    def __init__(self, library: str) -> None:
        self.library = ffi.dlopen(library)
        self.lines: list[str] = []

    def of_file(self, name: str) -> None:
        self.lines.append(name)
        text = pathlib.Path(name).read_bytes()
        kind = ffi.new("velhls_kind*")
        self.library.velhls_detect_kind(text, len(text), kind)
        if kind[0] == self.library.VELHLS_KIND_MASTER:
            self.parse(text, "master", self.of_master)
        else:
            self.parse(text, "media", self.of_media)
        self.findings(text)

    def parse(self, text: bytes, kind: str, inspect) -> None:
        handle = ffi.new(f"velhls_{kind}**")
        error = ffi.new("velhls_error**")
        parse = getattr(self.library, f"velhls_{kind}_parse")
        status = parse(text, len(text), handle, error)
        if status == self.library.VELHLS_OK:
            inspect(handle[0])
            getattr(self.library, f"velhls_{kind}_free")(handle[0])
        elif status == self.library.VELHLS_REJECTED:
            reason = structure("velhls_reason")
            self.library.velhls_error_reason(error[0], reason)
            self.lines.append(f"  rejected in line {reason.line}: {text_of(reason.message)}")
            self.library.velhls_error_free(error[0])
        else:
            self.lines.append("  " + ffi.string(self.library.velhls_status_text(status)).decode())

    def of_media(self, media) -> None:
        count = self.library.velhls_media_segment_count(media)
        durations = ffi.new("double[]", count)
        uris = ffi.new("velhls_string[]", count)
        self.library.velhls_media_durations(media, 0, count, durations)
        self.library.velhls_media_uris(media, 0, count, uris)
        for duration, uri in zip(durations, uris):
            self.lines.append(f"  {duration:.3f} {text_of(uri)}")

    def of_master(self, master) -> None:
        variant = structure("velhls_variant")
        for index in range(self.library.velhls_master_variant_count(master)):
            self.library.velhls_master_variant(master, index, variant)
            self.lines.append(f"  {variant.bandwidth} {text_of(variant.uri)}")

    def findings(self, text: bytes) -> None:
        library = self.library
        report = ffi.new("velhls_report**")
        library.velhls_check(text, len(text), ffi.NULL, report)
        findings = library.velhls_report_findings(report[0])
        finding = structure("velhls_finding")
        for index in range(library.velhls_findings_count(findings)):
            library.velhls_findings_get(findings, index, finding)
            if finding.severity >= library.VELHLS_SEVERITY_WARNING:
                place = f"  {finding.line}:{finding.column}: "
                self.lines.append(f"{place}{text_of(finding.message)} [{text_of(finding.rule)}]")
        library.velhls_report_free(report[0])


def main(arguments: list[str]) -> int:
    expected = None
    if arguments[:1] == ["--expect"]:
        expected = pathlib.Path(arguments[1]).read_text()
        arguments = arguments[2:]
    inspection = Inspection(arguments[0])
    for name in arguments[1:]:
        inspection.of_file(name)
    printed = "\n".join(inspection.lines) + "\n"
    if expected is None:
        print(printed, end="")
        return 0
    if printed != expected:
        print(f"printed\n{printed}and was expected to print\n{expected}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
