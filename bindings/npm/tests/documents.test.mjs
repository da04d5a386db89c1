// Documents: lines, attributes, URIs, structures and edits, byte for byte.
import assert from "node:assert/strict";
import { test } from "node:test";
import { Document, RefusedError } from "velhls";

const text = `#EXTM3U
#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="a",NAME="Ä"
# by hand

#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO="a"
low.m3u8
#EXT-X-STREAM-INF:BANDWIDTH=2
high.m3u8
`;

test("a document has every line", () => {
    const document = new Document(text);
    assert.equal(document.kind, "master");
    assert.equal(document.text, text);
    assert.deepEqual(document.line(2), {
        kind: "tag",
        number: 2,
        offset: 8,
        text: '#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="a",NAME="Ä"',
        ending: "\n",
        name: "EXT-X-MEDIA",
        value: 'TYPE=AUDIO,GROUP-ID="a",NAME="Ä"',
        hasColon: true,
        isKnown: true,
    });
    assert.deepEqual(
        document.lines.map(({ kind }) => kind),
        ["tag", "tag", "comment", "blank", "tag", "uri", "tag", "uri"],
    );
    assert.equal(document.lines.map((line) => line.text + line.ending).join(""), text);
    assert.throws(() => document.line(0), RangeError);
    assert.throws(() => document.line(9), { name: "RangeError", message: "there is no such record, line or place" });
});

test("attributes are those of a line", () => {
    const document = new Document('#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="a",NAME=,x=1');
    assert.deepEqual(document.attributes(1), [
        { name: "TYPE", value: "AUDIO", writtenValue: "AUDIO", isQuoted: false, isWellFormed: true, column: 14 },
        { name: "GROUP-ID", value: "a", writtenValue: '"a"', isQuoted: true, isWellFormed: true, column: 25 },
        { name: "NAME", value: "", writtenValue: "", isQuoted: false, isWellFormed: false, column: 38 },
        { name: "x", value: "1", writtenValue: "1", isQuoted: false, isWellFormed: false, column: 44 },
    ]);
});

test("URIs are lines and attributes", () => {
    const document = new Document('#EXTM3U\n#EXT-X-KEY:METHOD=AES-128,URI="k"\n#EXTINF:1,\nsegment.ts\n');
    assert.deepEqual(
        [...document.uris],
        [
            { line: 2, text: "k", attribute: "URI" },
            { line: 4, text: "segment.ts", attribute: "" },
        ],
    );
    assert.equal(
        document.apply(document.uris.map((uri, index) => document.replaceUri(index, `https://a/${uri.text}`))),
        '#EXTM3U\n#EXT-X-KEY:METHOD=AES-128,URI="https://a/k"\n#EXTINF:1,\nhttps://a/segment.ts\n',
    );
});

test("structures tell the lines of variants and segments", () => {
    assert.deepEqual(
        [...new Document(text).variants],
        [
            { tagLine: 5, uriLine: 6 },
            { tagLine: 7, uriLine: 8 },
        ],
    );
    const media = new Document('#EXTM3U\n#EXT-X-KEY:METHOD=AES-128,URI="k"\n#EXTINF:1.5,\na.ts\n#EXTINF:2,\nb.ts\n');
    const [, second] = media.segments;
    assert.deepEqual(
        [second.firstLine, second.lastLine, second.keyLines, second.startTime, second.mediaSequence],
        [5, 6, [2], 1.5, 1],
    );
});

test("edits touch no other byte", () => {
    const document = new Document(text);
    assert.equal(document.apply(), text);
    assert.equal(document.apply([]), text);
    const language = document.changeAttributes(2, { LANGUAGE: "de", NAME: null });
    assert.equal(document.apply(language), text.replace('NAME="Ä"', 'LANGUAGE="de"'));
    assert.equal(
        document.apply(document.removeVariant(0), document.insertBefore(4, "# two\n# lines")),
        text.replace('#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO="a"\nlow.m3u8\n', "").replace("by hand\n", "by hand\n# two\n# lines\n"),
    );
    assert.equal(document.apply(document.replaceValue(7, "BANDWIDTH=3")), text.replace("BANDWIDTH=2", "BANDWIDTH=3"));
    assert.equal(document.apply(document.removeLines(3, 4)), text.replace("# by hand\n\n", ""));
    assert.equal(document.apply({ offset: 0, length: 1, replacement: "" }), text.slice(1));
});

test("edits count bytes", () => {
    const document = new Document(text);
    const [edit] = document.replaceUri(0, "l.m3u8");
    assert.equal(edit.offset, new TextEncoder().encode(text.slice(0, text.indexOf("low.m3u8"))).length);
});

test("what a line cannot be given is refused with the reason", () => {
    const document = new Document(text);
    assert.throws(
        () => document.changeAttributes(2, { NAME: 'a"b' }),
        (error) => error instanceof RefusedError && error.message.startsWith("line 2: "),
    );
    assert.throws(() => document.replaceValue(5, "a\nb"), RefusedError);
    assert.throws(() => document.replaceUri(9, "x"), RangeError);
    assert.throws(() => document.removeVariant(2), RangeError);
    assert.throws(() => document.removeLines(2, 99), RangeError);
    assert.throws(() => document.apply({ offset: 1000, length: 1, replacement: "" }), RangeError);
    const edit = { offset: 1, length: 5, replacement: "x" };
    assert.throws(() => document.apply(edit, edit), RefusedError);
});

test("a document that was freed says so", () => {
    const document = new Document(text);
    const { uris, lines } = document;
    document.free();
    document.free();
    for (const use of [() => document.text, () => lines.at(0), () => uris.at(0), () => document.removeVariant(0)]) {
        assert.throws(use, { name: "TypeError", message: "this was freed" });
    }
});
