// Any bytes at all, memory that grows and that runs out.
import assert from "node:assert/strict";
import { test } from "node:test";
import { check, Document, fix, parse, render } from "velhls";

const segmentsOf = (count) =>
    `#EXTM3U\n#EXT-X-TARGETDURATION:6\n${Array.from({ length: count }, (_, i) => `#EXTINF:6,\nsegment${i}.ts\n`).join("")}`;

test("NUL bytes are bytes like any other", () => {
    const text = "#EXTM3U\n#EXTINF:1,a\0b\nseg\0ment.ts\n";
    assert.equal(parse(text).segments.at(0).uri, "seg\0ment.ts");
    assert.equal(new Document(text).text, text);
});

test("lines may end in CR and LF, and the last one in nothing", () => {
    const text = "#EXTM3U\r\n#EXT-X-TARGETDURATION:1\r\n#EXTINF:1,\r\nsegment.ts\r\n#EXTINF:1,\r\nsegment2.ts";
    const document = new Document(text);
    assert.deepEqual(
        document.lines.map(({ ending }) => ending),
        ["\r\n", "\r\n", "\r\n", "\r\n", "\r\n", ""],
    );
    assert.equal(document.apply(document.replaceUri(1, "x.ts")), text.replace("segment2.ts", "x.ts"));
    assert.deepEqual(
        document.uris.map((uri) => uri.text),
        ["segment.ts", "segment2.ts"],
    );
});

test("bytes that are not UTF-8 become U+FFFD in strings, and stay in texts of bytes", () => {
    const bytes = Uint8Array.of(...Buffer.from("#EXTM3U\n#EXTINF:1,\na"), 0xff, 0xfe, ...Buffer.from("bcdefg.ts\n"));
    assert.deepEqual(parse(bytes).uris, ["a\ufffd\ufffdbcdefg.ts"]);
    const document = new Document(bytes);
    assert.deepEqual(document.text, bytes);
    assert.deepEqual(document.apply(), bytes);
    assert.deepEqual(document.apply(document.insertAfter(3, "# end")), Uint8Array.of(...bytes, ...Buffer.from("# end\n")));
});

test("an edit whose bytes are not UTF-8 holds bytes", () => {
    const document = new Document("#EXTM3U\n#EXTINF:1,\nsegment.ts\n");
    const bytes = Uint8Array.of(0x61, 0xff);
    const [edit] = document.replaceUri(0, bytes);
    assert.deepEqual(edit.replacement, bytes);
});

test("a byte order mark stays", () => {
    const text = "\ufeff#EXTM3U\n#EXTINF:1,\nsegment.ts\n";
    assert.equal(new Document(text).text, text);
    assert.equal(new Document(text).line(1).text, "\ufeff#EXTM3U");
});

test("half of a surrogate pair is U+FFFD", () => {
    assert.equal(new Document("# \ud800\n").text, "# \ufffd\n");
});

test("one line may have megabytes", () => {
    const uri = "a".repeat(5_000_000);
    assert.equal(parse(`#EXTM3U\n#EXTINF:1,\n${uri}\n`).uris[0].length, uri.length);
});

test("a million blank lines are a document", () => {
    const document = new Document("\n".repeat(1_000_000));
    assert.equal(document.lines.length, 1_000_000);
    assert.equal(document.lines.at(-1).number, 1_000_000);
});

test("every beginning of a playlist parses or is rejected", () => {
    const text = '#EXTM3U\n#EXT-X-KEY:METHOD=AES-128,URI="k"\n#EXTINF:1.5,é\nsegment.ts\n#EXT-X-ENDLIST\n';
    const bytes = new TextEncoder().encode(text);
    for (let length = 0; length <= bytes.length; ++length) {
        const { rejected } = check(bytes.subarray(0, length), { profiles: [] });
        let told = null;
        try {
            parse(bytes.subarray(0, length)).free();
        } catch (error) {
            told = error.reason;
        }
        assert.deepEqual(told, rejected, JSON.stringify(text.slice(0, length)));
    }
});

test("what was made before the memory grew is whole after it", () => {
    const before = parse(segmentsOf(3));
    const { durations, segments } = before;
    const parts = Array.from({ length: 6 }, () => parse(segmentsOf(50_000)));
    assert.deepEqual(durations, Float64Array.of(6, 6, 6));
    assert.equal(segments.at(2).uri, "segment2.ts");
    assert.deepEqual(before.uris, ["segment0.ts", "segment1.ts", "segment2.ts"]);
    for (const part of parts) {
        assert.equal(part.uris[49_999], "segment49999.ts");
        part.free();
    }
});

test("a pattern may make the memory grow while it is parsed, and ends at its bound", () => {
    const text = segmentsOf(150_000);
    assert.equal(render(text).match(/#EXTINF/g).length, 150_000);
});

test("mending a large text gives it whole", () => {
    const text = segmentsOf(20_000).slice(0, -1);
    assert.equal(fix(text, { profiles: "library" }).text.length >= text.length, true);
});
