// The models: every field, exact errors, columns, and the lives of what holds memory.
import assert from "node:assert/strict";
import { test } from "node:test";
import { MasterPlaylist, MediaPlaylist, parse, PlaylistError } from "velhls";

const media = `#EXTM3U
#EXT-X-VERSION:7
#EXT-X-TARGETDURATION:6
#EXT-X-MEDIA-SEQUENCE:9007199254740993
#EXT-X-PLAYLIST-TYPE:EVENT
#EXT-X-INDEPENDENT-SEGMENTS
#EXT-X-START:TIME-OFFSET=1.5,PRECISE=YES
#EXT-X-MAP:URI="init.mp4",BYTERANGE="720@0"
#EXT-X-KEY:METHOD=SAMPLE-AES,URI="key",IV=0x000102030405060708090a0b0c0d0e0f,KEYFORMAT="com.example",KEYFORMATVERSIONS="1/2"
#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:00Z
#EXT-X-BYTERANGE:1024@720
#EXTINF:6.006,Ünïcode
segment1.mp4
#EXT-X-DISCONTINUITY
#EXT-X-CUE-OUT:30
#EXTINF:4,
segment2.mp4
#EXT-X-ENDLIST
`;

const key = {
    method: "SAMPLE-AES",
    uri: "key",
    iv: "0x000102030405060708090a0b0c0d0e0f",
    keyFormat: "com.example",
    keyFormatVersions: [1, 2],
};

test("a media playlist has the values of its tags", () => {
    const playlist = parse(media);
    assert.ok(playlist instanceof MediaPlaylist);
    const { variables, ...fields } = playlist;
    assert.equal(playlist.kind, "media");
    assert.deepEqual(fields, {
        hasHeader: true,
        version: 7,
        targetDuration: 6,
        playlistType: "EVENT",
        endList: true,
        mediaSequence: 9007199254740992,
        discontinuitySequence: 0,
        iFramesOnly: false,
        independentSegments: true,
        startTimeOffset: 1.5,
        startPrecise: true,
        discontinuitySeen: true,
    });
    assert.deepEqual(variables, new Map());
});

test("a segment has the values of its tags", () => {
    const segments = parse(media).segments;
    assert.equal(segments.length, 2);
    assert.deepEqual(
        [...segments],
        [
            {
                uri: "segment1.mp4",
                duration: 6.006,
                title: ",Ünïcode",
                startTime: 0,
                mediaSequence: 9007199254740992,
                discontinuitySequence: 0,
                discontinuity: false,
                programDateTime: 1767225600,
                byteRange: { length: 1024, offset: 720 },
                key,
                map: { uri: "init.mp4", byteRange: { length: 720, offset: 0 } },
                cueIn: false,
                cueOut: "",
                cueOutCont: "",
            },
            {
                uri: "segment2.mp4",
                duration: 4,
                title: ",",
                startTime: 6.006,
                mediaSequence: 9007199254740994,
                discontinuitySequence: 1,
                discontinuity: true,
                programDateTime: 1767225606.006,
                byteRange: null,
                key,
                map: { uri: "init.mp4", byteRange: { length: 720, offset: 0 } },
                cueIn: false,
                cueOut: "30",
                cueOutCont: "",
            },
        ],
    );
});

test("a key that segments share is one object", () => {
    const [first, second] = parse(media).segments;
    assert.equal(first.key, second.key);
    assert.equal(first.map, second.map);
});

test("columns hold one value for each segment", () => {
    const playlist = parse(media);
    assert.deepEqual(playlist.uris, ["segment1.mp4", "segment2.mp4"]);
    assert.deepEqual(playlist.titles, [",Ünïcode", ","]);
    assert.deepEqual(playlist.durations, Float64Array.of(6.006, 4));
    assert.deepEqual(playlist.startTimes, Float64Array.of(0, 6.006));
    assert.deepEqual(playlist.mediaSequences, BigUint64Array.of(9007199254740993n, 9007199254740994n));
    assert.deepEqual(playlist.discontinuitySequences, BigUint64Array.of(0n, 1n));
    assert.deepEqual(playlist.discontinuities, Uint8Array.of(0, 1));
    assert.deepEqual(playlist.byteRanges, {
        lengths: BigInt64Array.of(1024n, -1n),
        offsets: BigInt64Array.of(720n, -1n),
    });
});

test("columns agree with the objects", () => {
    const playlist = parse(media);
    assert.deepEqual(
        [...playlist.programDateTimes],
        playlist.segments.map(({ programDateTime }) => programDateTime),
    );
    assert.deepEqual(
        [...playlist.startTimes],
        playlist.segments.map(({ startTime }) => startTime),
    );
});

test("URIs with characters of several bytes are divided where they end", () => {
    const playlist = parse("#EXTM3U\n#EXTINF:1,\nä-long-name-of-a-segment.ts\n#EXTINF:1,\nshorter.ts\n#EXTINF:1,\n🎬.ts\n");
    assert.deepEqual(playlist.uris, ["ä-long-name-of-a-segment.ts", "shorter.ts", "🎬.ts"]);
    assert.deepEqual(
        playlist.segments.map(({ uri }) => uri),
        playlist.uris,
    );
});

test("variables are a map in the order of their names", () => {
    const playlist = parse(
        '#EXTM3U\n#EXT-X-DEFINE:NAME="b",VALUE="2"\n#EXT-X-DEFINE:NAME="a",VALUE="1"\n#EXTINF:1,\n{$a}{$b}.ts\n',
    );
    assert.deepEqual([...playlist.variables.keys()].sort(), ["a", "b"]);
});

const master = `#EXTM3U
#EXT-X-VERSION:5
#EXT-X-INDEPENDENT-SEGMENTS
#EXT-X-SESSION-DATA:X-FIRST="1",DATA-ID="com.example.title",VALUE="Title",LANGUAGE="en"
#EXT-X-SESSION-KEY:METHOD=AES-128,URI="key"
#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="audio",NAME="English",LANGUAGE="en",DEFAULT=YES,AUTOSELECT=YES,CHARACTERISTICS="b,a",URI="en.m3u8"
#EXT-X-STREAM-INF:BANDWIDTH=2000000,AVERAGE-BANDWIDTH=1500000,CODECS="avc1.4d401f,mp4a.40.2",RESOLUTION=1280x720,AUDIO="audio"
720.m3u8
#EXT-X-STREAM-INF:BANDWIDTH=800000,CLOSED-CAPTIONS=NONE
360.m3u8
#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=200000,URI="i.m3u8"
`;

const variant = {
    uri: "720.m3u8",
    bandwidth: 2000000,
    averageBandwidth: 1500000,
    codecs: "avc1.4d401f,mp4a.40.2",
    resolution: "1280x720",
    programId: 0,
    isIFrame: false,
    nominalVideoBitrate: 0,
    nominalAudioBitrate: 0,
    audio: "audio",
    video: null,
    subtitles: null,
    closedCaptions: null,
};

test("a master playlist has the values of its tags", () => {
    const playlist = parse(master);
    assert.ok(playlist instanceof MasterPlaylist);
    assert.equal(playlist.kind, "master");
    assert.deepEqual(
        { ...playlist },
        { hasHeader: true, version: 5, independentSegments: true, startTimeOffset: -1, startPrecise: false },
    );
    assert.deepEqual(
        [...playlist.variants],
        [
            variant,
            {
                ...variant,
                uri: "360.m3u8",
                bandwidth: 800000,
                averageBandwidth: 0,
                codecs: "",
                resolution: "",
                audio: null,
            },
        ],
    );
    assert.deepEqual(
        [...playlist.iFrameVariants].map(({ uri, isIFrame }) => [uri, isIFrame]),
        [["i.m3u8", true]],
    );
    assert.deepEqual(
        [...playlist.renditions],
        [
            {
                type: "AUDIO",
                isDefault: true,
                autoSelect: true,
                forced: false,
                uri: "en.m3u8",
                groupId: "audio",
                name: "English",
                language: "en",
                assocLanguage: "",
                instreamId: "",
                audioTrackType: "",
                characteristics: ["a", "b"],
            },
        ],
    );
    assert.deepEqual([...playlist.sessionData], [{ dataId: "com.example.title", value: "Title", uri: "", language: "en" }]);
    assert.deepEqual(
        [...playlist.sessionKeys].map(({ method, uri }) => [method, uri]),
        [["AES-128", "key"]],
    );
});

test("columns of a master playlist hold one value for each variant", () => {
    const playlist = parse(master);
    assert.deepEqual(playlist.variantUris, ["720.m3u8", "360.m3u8", "i.m3u8"]);
    assert.deepEqual(playlist.bandwidths, BigUint64Array.of(2000000n, 800000n, 200000n));
    assert.deepEqual(playlist.averageBandwidths, BigUint64Array.of(1500000n, 0n, 0n));
    assert.deepEqual(playlist.codecs, ["avc1.4d401f,mp4a.40.2", "", ""]);
    assert.deepEqual(playlist.resolutions, ["1280x720", "", ""]);
    assert.deepEqual(playlist.renditionUris, ["en.m3u8"]);
});

test("a list counts from both ends", () => {
    const { segments } = parse(media);
    assert.equal(segments.at(-1).uri, "segment2.mp4");
    assert.equal(segments.at(2), undefined);
    assert.equal(segments.at(-3), undefined);
    assert.equal(segments.at(0.9).uri, "segment1.mp4");
});

test("a text may be bytes of any view", () => {
    const bytes = new TextEncoder().encode(`xx${media}`);
    for (const text of [bytes.subarray(2), bytes.slice(2).buffer, new DataView(bytes.buffer, 2), Buffer.from(media)]) {
        assert.deepEqual(parse(text).uris, ["segment1.mp4", "segment2.mp4"]);
    }
});

test("what is no text is a TypeError", () => {
    const seen = (text) => [() => parse(text), { name: "TypeError" }];
    for (const text of [undefined, null, 7, {}, [media]]) assert.throws(...seen(text));
    assert.throws(() => parse(7), { message: "expected a text as a string or bytes, seen number" });
    assert.throws(() => parse(media, { kind: "video" }), {
        name: "TypeError",
        message: 'expected the kind "master" or "media", seen "video"',
    });
});

test("a rejection tells rule, place and message", () => {
    const text = "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=fast\nlow.m3u8\n";
    assert.throws(
        () => parse(text),
        (error) => {
            assert.ok(error instanceof PlaylistError);
            assert.equal(error.message, 'line 2: EXT-X-STREAM-INF: BANDWIDTH: expected a number, seen "fast"');
            assert.deepEqual(
                { ...error.reason },
                {
                    rule: error.reason.rule,
                    line: 2,
                    column: 29,
                    length: 4,
                    message: 'EXT-X-STREAM-INF: BANDWIDTH: expected a number, seen "fast"',
                },
            );
            assert.match(error.reason.rule, /^[a-z-]+$/);
            return true;
        },
    );
});

test("a text of which no tag tells what it is is rejected", () => {
    assert.throws(() => parse(""), { message: "line 1: expected an HLS playlist, seen an empty text" });
    assert.throws(() => parse("hello\n"), { message: "line 1: expected an HLS playlist, seen no tag" });
});

test("the kind may be told", () => {
    assert.throws(() => parse(media, { kind: "master" }), PlaylistError);
    assert.equal(parse("#EXTM3U\n#EXTINF:1,\nsegment.ts\n", { kind: "media" }).kind, "media");
});

test("what was freed says so, and what was made of it stays", () => {
    const playlist = parse(media);
    const { segments, durations } = playlist;
    const [segment] = segments;
    playlist.free();
    playlist.free();
    assert.throws(() => playlist.uris, { name: "TypeError", message: "this was freed" });
    assert.throws(() => segments.at(0), { message: "this was freed" });
    assert.equal(segment.uri, "segment1.mp4");
    assert.deepEqual(durations, Float64Array.of(6.006, 4));
    assert.equal(playlist.version, 7);
});

test("freeing is what `using` calls", { skip: Symbol.dispose === undefined }, () => {
    const playlist = parse(media);
    playlist[Symbol.dispose]();
    assert.throws(() => playlist.uris, { message: "this was freed" });
});
