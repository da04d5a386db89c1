// What a player sees of a playlist: what hls.js's own parser makes of it, as plain values.

/** Where the playlists are said to come from. */
export const base = "https://example.com/folder/playlist.m3u8";

// The parser expects a browser's window.
globalThis.self = globalThis;
const { M3U8Parser } = await import("hls.js/dist/hls.mjs");

/** Attributes, with URIs resolved: a player does that before it uses one. */
function attributesOf(attributes) {
    const { clientAttrs, ...named } = attributes;
    const resolved = ([name, value]) => [name, /\bURI$/.test(name) ? new URL(value, base).href : value];
    return Object.fromEntries(Object.entries(named).map(resolved));
}
const attributesOfAll = (list) => (list ?? []).map(attributesOf);

const keyOf = (key) => ({
    method: key.method,
    uri: key.uri,
    iv: key.iv === null ? null : [...key.iv].join(" "),
    format: key.keyFormat,
    versions: key.keyFormatVersions.join("/"),
});
const keysOf = (keys) => Object.values(keys ?? {}).map(keyOf);
const rangeOf = ({ byteRange }) => byteRange.join("-");

const segmentOf = (fragment) => ({
    uri: fragment.url,
    duration: fragment.duration,
    title: fragment.title,
    sequence: fragment.sn,
    discontinuities: fragment.cc,
    date: fragment.programDateTime,
    range: rangeOf(fragment),
    keys: keysOf(fragment.levelkeys),
    map: fragment.initSegment && {
        uri: fragment.initSegment.url,
        range: rangeOf(fragment.initSegment),
        keys: keysOf(fragment.initSegment.levelkeys),
    },
});

function mediaOf(text) {
    const details = M3U8Parser.parseLevelPlaylist(text, base, 0, "main", 0, null);
    return {
        error: details.playlistParsingError?.message ?? null,
        version: details.version,
        targetDuration: details.targetduration,
        type: details.type,
        live: details.live,
        start: details.startTimeOffset,
        sequence: details.startSN,
        dateRanges: Object.fromEntries(Object.entries(details.dateRanges).map(([id, { attr }]) => [id, attributesOf(attr)])),
        variables: { ...details.variableList },
        segments: details.fragments.filter((fragment) => fragment !== null).map(segmentOf),
    };
}

function masterOf(text) {
    const master = M3U8Parser.parseMasterPlaylist(text, base);
    const renditions = M3U8Parser.parseMasterPlaylistMedia(text, base, master);
    const iFramesOf = ({ url, bitrate, attrs }) => ({ uri: url, bitrate, attributes: attributesOf(attrs) });
    // EXT-X-STREAM-INF has no URI among its attributes; a player looks at none.
    const levelOf = ({ url, bitrate, attrs: { clientAttrs, URI, ...attributes } }) => ({ uri: url, bitrate, attributes });
    return {
        error: master.playlistParsingError?.message ?? null,
        start: master.startTimeOffset,
        variants: master.levels.map(levelOf),
        iFrameVariants: (master.iframeVariants ?? []).map(iFramesOf),
        renditions: attributesOfAll(
            Object.values(renditions)
                .flatMap((list) => (Array.isArray(list) ? list : []))
                .map(({ attrs }) => attrs),
        ),
        sessionData: Object.values(master.sessionData ?? {}).map(attributesOf),
        sessionKeys: (master.sessionKeys ?? []).map(keyOf),
        steering: master.contentSteering && { ...master.contentSteering },
        variables: { ...master.variableList },
    };
}

/** As the player asks: what has segments is a media playlist. */
export function viewOf(text) {
    try {
        return /^#EXTINF:|^#EXT-X-TARGETDURATION:/m.test(text) ? mediaOf(text) : masterOf(text);
    } catch (error) {
        return { thrown: error.message };
    }
}

/** A view in which the order of variants and renditions makes no difference. */
export function inAnyOrder(view) {
    const sorted = (list) => list && [...list].sort((a, b) => (JSON.stringify(a) < JSON.stringify(b) ? -1 : 1));
    const { variants, iFrameVariants, renditions } = view;
    return { ...view, variants: sorted(variants), iFrameVariants: sorted(iFrameVariants), renditions: sorted(renditions) };
}

/** The paths at which two views differ, "segments.uri", without the places in lists. */
export function differences(before, after, path = "") {
    if (Object.is(before, after)) return [];
    const areObjects = [before, after].every((each) => each !== null && typeof each === "object");
    if (!areObjects || Array.isArray(before) !== Array.isArray(after)) return [path];
    if (Array.isArray(before) && before.length !== after.length) return [`${path}.number`];
    const keys = new Set([...Object.keys(before), ...Object.keys(after)]);
    const stepOf = (key) => (Array.isArray(before) ? path : path === "" ? key : `${path}.${key}`);
    return [...new Set([...keys].flatMap((key) => differences(before[key], after[key], stepOf(key))))];
}
