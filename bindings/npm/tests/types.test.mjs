// The types, which are written by hand, against what there is: every name, every field, and a compiler where there is one.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import * as velhls from "velhls";
import * as parsing from "velhls/parse";

const folder = new URL(".", import.meta.resolve("velhls"));
const types = ["parse.d.ts", "index.d.ts"].map((name) => readFileSync(new URL(name, folder), "utf8")).join("\n");

/** The names of an interface's or a class's members. */
function membersOf(name) {
    const body = new RegExp(`^export (?:interface|class) ${name}\\b[^{]*\\{\\n(.*?)^\\}`, "ms").exec(types)[1];
    return [...body.matchAll(/^ {4}(?:readonly )?(\w+)\??[:(<]/gm)]
        .map(([, member]) => member)
        .filter((member) => member !== "constructor");
}

const media = velhls.parse('#EXTM3U\n#EXT-X-KEY:METHOD=NONE\n#EXT-X-MAP:URI="i",BYTERANGE="1@2"\n#EXTINF:1,\nsegment.ts\n');
const master = velhls.parse(
    '#EXTM3U\n#EXT-X-SESSION-DATA:X-FIRST="1",DATA-ID="a",VALUE="b"\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="a",NAME="n",URI="u"\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n',
);
const document = new velhls.Document("#EXTM3U\n#EXTINF:1,\na.ts\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n");
const mended = velhls.fix("#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-VERSION:3,\n#EXTINF:6.5,\nsegment1.ts", {
    profiles: ["rfc8216", "library"],
    lossy: true,
    guess: true,
});
const finding = velhls.check("#EXTM3U\n#EXTINF:6,\nsegment1.ts\n", { fixes: true }).findings[0];
const mediaOf = (target) => `#EXTM3U\n#EXT-X-TARGETDURATION:${target}\n#EXTINF:6,\nsegment1.ts\n#EXT-X-ENDLIST\n`;
const [apart] = velhls.checkPresentation(
    { uri: "", text: "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n#EXT-X-STREAM-INF:BANDWIDTH=2\nb\n" },
    [6, 7].map((target, index) => ({ uri: "ab"[index], text: mediaOf(target) })),
);
const compared = velhls.compare("#EXTM3U\n#EXTINF:1,\na.ts\n", "#EXTM3U\n#EXTINF:2,\na.ts\n");

const objects = {
    ByteRange: media.segments.at(0).map.byteRange,
    Key: media.segments.at(0).key,
    MediaInitialization: media.segments.at(0).map,
    Segment: media.segments.at(0),
    Variant: master.variants.at(0),
    Rendition: master.renditions.at(0),
    SessionData: master.sessionData.at(0),
    Finding: finding,
    RelatedPlace: apart.related[0],
    Fix: finding.fixes[0],
    Edit: mended.edits[0],
    Report: mended.left,
    Mended: mended,
    Done: mended.done[0],
    Change: compared.changes[0],
    Reference: velhls.references("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n")[0],
    Rule: velhls.rule("attribute-missing"),
    Line: document.line(1),
    Attribute: document.attributes(4)[0],
    Uri: document.uris.at(0),
    SegmentLines: document.segments.at(0),
    VariantLines: document.variants.at(0),
    Reason: velhls.check("").rejected,
};

for (const [name, object] of Object.entries(objects)) {
    test(`the type ${name} has the fields that there are`, () => {
        assert.deepEqual(Object.keys(object).sort(), membersOf(name).sort());
    });
}

const propertiesOf = (object) =>
    [...Object.keys(object), ...Object.getOwnPropertyNames(Object.getPrototypeOf(object))].filter(
        (name) => name !== "constructor" && name !== "free",
    );

test("the types of playlists and documents have the members that there are", () => {
    assert.deepEqual(propertiesOf(media).sort(), membersOf("MediaPlaylist").sort());
    assert.deepEqual(propertiesOf(master).sort(), membersOf("MasterPlaylist").sort());
    assert.deepEqual(
        propertiesOf(document).sort(),
        membersOf("Document")
            .filter((name) => name !== "free")
            .sort(),
    );
});

test("the types have the names that are exported", () => {
    const own = [...types.matchAll(/^export (?:declare )?(?:class|const|function) (\w+)/gm)].map(([, name]) => name);
    assert.deepEqual(Object.keys(velhls).sort(), [...new Set(own)].sort());
    assert.deepEqual(Object.keys(parsing).sort(), ["MasterPlaylist", "MediaPlaylist", "PlaylistError", "parse"]);
});

test("the smaller module reads as the whole one", () => {
    const text = "#EXTM3U\n#EXTINF:1.5,\nsegment.ts\n";
    assert.deepEqual([...parsing.parse(text).segments], [...velhls.parse(text).segments]);
    assert.throws(
        () => parsing.parse("#EXTM3U\n#EXTINF:x,\nsegment.ts\n"),
        (error) => {
            assert.ok(error instanceof velhls.PlaylistError);
            assert.deepEqual(error.reason, velhls.check("#EXTM3U\n#EXTINF:x,\nsegment.ts\n", { profiles: [] }).rejected);
            return true;
        },
    );
    assert.throws(() => parsing.parse("hello"), {
        message: "line 1: expected an HLS playlist, seen no tag that only a master or only a media playlist has",
    });
});
