// Checks, fixes, comparisons and presentations, with their exact words.
import assert from "node:assert/strict";
import { test } from "node:test";
import {
    check,
    checkPresentation,
    compare,
    Document,
    fix,
    fixForModels,
    parse,
    references,
    RefusedError,
    render,
    rule,
    write,
} from "velhls";

const text = '#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="a"\n';

test("a finding says what was expected and where", () => {
    const report = check(text, { profiles: ["rfc8216", "library"] });
    assert.equal(report.kind, "master");
    assert.deepEqual(
        report.findings
            .filter(({ severity }) => severity === "error")
            .map(({ line, column, message, rule }) => [line, column, message, rule]),
        [
            [1, 1, "EXTM3U: expected at least one EXT-X-STREAM-INF or EXT-X-I-FRAME-STREAM-INF, seen none", "variants-missing"],
            [2, 2, "EXT-X-MEDIA: expected NAME, seen none", "attribute-missing"],
            [2, 2, "EXT-X-MEDIA: expected NAME, seen none", "rendition-name-missing"],
        ],
    );
    assert.equal(report.rejected.rule, "rendition-name-missing");
});

test("without profiles a check tells no more than the rejection", () => {
    assert.deepEqual(check(text, { profiles: [] }).findings, []);
    assert.equal(check("#EXTM3U\n#EXTINF:1,\nsegment.ts\n", { profiles: [] }).rejected, null);
    assert.equal(check("").kind, null);
});

test("a profile that there is not is a TypeError", () => {
    assert.throws(() => check(text, { profiles: "rfc9999" }), {
        name: "TypeError",
        message: 'expected the profile rfc8216, rfc8216bis, apple, library, seen "rfc9999"',
    });
    assert.throws(() => checkPresentation({ uri: "", text }, [], { profiles: "library" }), TypeError);
});

test("findings have fixes when they are asked for, and these mend the text", () => {
    const broken = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment1.ts";
    assert.ok(check(broken, { profiles: "library" }).findings.every(({ fixes }) => fixes.length === 0));
    const fixes = check(broken, { profiles: "library", fixes: true }).findings.flatMap((finding) => finding.fixes);
    assert.ok(fixes.length > 0);
    assert.equal(new Document(broken).apply(fixes[0].edits), `${broken}\n`);
});

test("mending tells what it did, and edits make the mended text of the given one", () => {
    const broken = '#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1, CODECS="mp4a.40.2",\nlow.m3u8\n';
    const { text: mended, edits, done, rounds, left } = fix(broken);
    assert.equal(mended, '#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS="mp4a.40.2"\nlow.m3u8\n');
    assert.equal(new Document(broken).apply(edits), mended);
    assert.equal(done[0].fixClass, "safe");
    assert.equal(done[0].line, 2);
    assert.ok(rounds >= 1);
    assert.equal(left.kind, "master");
    assert.deepEqual(fix(new TextEncoder().encode(broken)).text, new TextEncoder().encode(mended));
});

test("what fixes dare is asked for", () => {
    const broken = "#EXTM3U\n#EXTINF:6,\nsegment1.ts\n";
    const safe = fix(broken);
    const daring = fix(broken, { lossy: true, guess: true });
    assert.notEqual(daring.text, safe.text);
    assert.ok(daring.done.some(({ fixClass }) => fixClass !== "safe"));
    assert.ok(safe.done.every(({ fixClass }) => fixClass === "safe"));
});

test("what the models reject is mended for them", () => {
    const { text: mended } = fixForModels("#EXTM3U\n#EXTINF:6,\nsegment1.ts");
    assert.deepEqual(parse(mended).uris, ["segment1.ts"]);
});

test("a comparison says what was added and what is forbidden", () => {
    const before = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment1.ts\n";
    const { changes, findings } = compare(before, `${before}#EXTINF:6,\nsegment2.ts\n`);
    assert.deepEqual(changes, [
        { kind: "added", path: "segment 1", what: "", oldText: "", newText: "6 segment2.ts", oldLine: 0, newLine: 6 },
    ]);
    assert.deepEqual(findings, []);
    const forbidden = compare(new Document(before), new Document(before.replace("DURATION:6", "DURATION:7")), { elapsed: 6 });
    assert.deepEqual(
        forbidden.findings.map(({ rule }) => rule),
        ["target-duration-changed", "new-segment-missing"],
    );
    assert.deepEqual(compare(before, before).changes, []);
});

test("versions of different kinds cannot be compared", () => {
    assert.throws(
        () => compare(text, "#EXTM3U\n#EXTINF:6,\nsegment1.ts\n"),
        (error) => error instanceof RefusedError && error.message === "the versions are of different kinds, or no playlists",
    );
});

const master = "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=100\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=200\nhigh.m3u8\n";
const media = (target) => `#EXTM3U\n#EXT-X-TARGETDURATION:${target}\n#EXTINF:6,\nsegment1.ts\n#EXT-X-ENDLIST\n`;

test("a master playlist names the texts of its presentation", () => {
    assert.deepEqual(references(master), [
        { uri: "low.m3u8", use: "playlist", line: 3 },
        { uri: "high.m3u8", use: "playlist", line: 5 },
    ]);
});

test("a presentation is checked as a whole", () => {
    const whole = { uri: "master.m3u8", text: master };
    const findings = checkPresentation(whole, [
        { uri: "low.m3u8", text: media(6) },
        { uri: "high.m3u8", text: new Document(media(7)) },
    ]);
    assert.ok(
        findings.some(({ uri, related }) => uri !== "" && related.length > 0),
        JSON.stringify(findings),
    );
    const missing = checkPresentation(whole, [
        { uri: "low.m3u8", text: media(6) },
        { uri: "high.m3u8", text: null, why: "too large" },
    ]);
    assert.notDeepEqual(missing, findings);
});

test("a rule is known by its name", () => {
    const known = rule("attribute-missing");
    assert.deepEqual([known.id, known.severity, known.profile], ["attribute-missing", "error", "rfc8216"]);
    assert.equal(rule("no-such-rule"), null);
});

test("a playlist is written as the model has it, and as RFC 8216 wants it", () => {
    const given = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n# comment\n#EXTINF:6.0,\nsegment1.ts\n#EXT-X-ENDLIST\n";
    const written = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment1.ts\n#EXT-X-ENDLIST\n";
    assert.equal(write(given), written);
    const playlist = parse(given);
    assert.equal(write(playlist), written);
    assert.equal(render(playlist), render(given));
    assert.deepEqual(render(new TextEncoder().encode(given)), new TextEncoder().encode(render(given)));
    assert.deepEqual(write(parse(new TextEncoder().encode(given))), new TextEncoder().encode(written));
});

test("options of writing are those of the kind", () => {
    const cues = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-CUE-OUT:6\n#EXTINF:6,\nsegment1.ts\n#EXT-X-ENDLIST\n";
    assert.match(write(cues), /#EXT-X-CUE-OUT:6\n/);
    assert.doesNotMatch(write(cues, { cueMarkers: false }), /CUE/);
    assert.match(write(master, { noClosedCaptions: true }), /CLOSED-CAPTIONS=NONE/);
    assert.doesNotMatch(write(master), /CLOSED-CAPTIONS/);
});

test("what cannot be written is refused with the reason", () => {
    const noTarget = '#EXTM3U\n#EXT-X-KEY:METHOD=AES-128,URI="k"\n#EXT-X-STREAM-INF:BANDWIDTH=1\n';
    assert.throws(() => write(noTarget, { kind: "master" }), Error);
});
