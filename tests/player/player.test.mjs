// hls.js, a player, on every example: what it sees of a playlist before and after velhls has touched that. Edits and safe fixes
// change nothing but what they are asked for, and what `render` changes the findings of the profile library name.
//
// Run by tests/player/run, where VELHLS_COMMAND names the command and VELHLS_SOURCE the sources.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readdirSync, readFileSync } from "node:fs";
import { basename, join, relative } from "node:path";
import { test } from "node:test";

import { base, differences, inAnyOrder, viewOf } from "./view.mjs";

const { VELHLS_COMMAND: command, VELHLS_SOURCE: source } = process.env;
const examples = join(source, "examples");
const files = readdirSync(examples, { recursive: true })
    .filter((name) => name.endsWith(".m3u8"))
    .sort()
    .map((name) => join(examples, name));

function run(...options) {
    const { stdout, stderr, status } = spawnSync(command, options, { encoding: "utf8", maxBuffer: 1 << 28 });
    return { stdout, stderr, status };
}

/** What a player takes nothing of leaves nothing to compare. */
const isRejected = ({ error, thrown }) => thrown !== undefined || error !== null;

const isExplained = (path, allowed) => allowed.some((prefix) => path === prefix || path.startsWith(`${prefix}.`));

/** Compares what is seen of each example with what is seen of the text that `change` makes of it and the paths that it names. */
function compareAll(change, least) {
    const unexplained = [];
    let compared = 0;
    for (const file of files) {
        const text = readFileSync(file, "utf8");
        const before = viewOf(text);
        if (isRejected(before)) continue;
        const changed = change(file, text, before);
        if (changed === null) continue;
        ++compared;
        const { expected = before, after, allowed = [], unordered = false } = changed;
        const [wanted, seen] = unordered ? [inAnyOrder(expected), inAnyOrder(after)] : [expected, after];
        for (const path of differences(wanted, seen)) {
            if (!isExplained(path, allowed)) unexplained.push(`${relative(source, file)}: ${path}`);
        }
    }
    assert.deepEqual(unexplained, []);
    assert.ok(compared >= least, `only ${compared} were compared`);
}

// Where a player takes something else for a URI than the standard does. An edit leaves alone what is none.
const misread = {
    "attribute-list-malformed.m3u8": "it goes on at an attribute that has no name",
    "carriage-return-dropped.m3u8": "a carriage return ends a line",
    "carriage-return-inside-line.m3u8": "a carriage return ends a line",
    "segment-duration-negative.m3u8": "a duration below 0 is none, and a part of the URI",
    "variant-uri-is-tag.m3u8": "the next line is the URI, even if it is a tag",
    "variant-without-uri.m3u8": "the next line is the URI, even if it is a tag",
};
const isMisread = (file) => basename(file) in misread;

test("an edit that makes URIs absolute changes nothing that a player sees", () => {
    compareAll((file) => {
        if (isMisread(file)) return null;
        const { stdout, status } = run("edit", "--base", base, file);
        return status === 0 ? { after: viewOf(stdout) } : null;
    }, 300);
});

const withToken = (uri) => {
    const { protocol } = new URL(uri);
    if (protocol !== "https:" && protocol !== "http:") return uri;
    const [, whole, fragment] = /^([^#]*)(#.*)?$/.exec(uri);
    return `${whole}${whole.includes("?") ? "&" : "?"}token=1${fragment ?? ""}`;
};

/** A view with another URI wherever there is one. */
function withUris(value, change, name = "") {
    if (/\buri$/i.test(name) && typeof value === "string" && /^[a-z]+:/i.test(value)) return change(value);
    if (Array.isArray(value)) return value.map((each) => withUris(each, change));
    if (value === null || typeof value !== "object") return value;
    return Object.fromEntries(Object.entries(value).map(([key, each]) => [key, withUris(each, change, key)]));
}

test("an edit that appends a query changes each URI by that, and nothing else", () => {
    compareAll((file, text, before) => {
        if (isMisread(file)) return null;
        const { stdout, status } = run("edit", "--append-query", "token=1", file);
        return status === 0 ? { expected: withUris(before, withToken), after: viewOf(stdout) } : null;
    }, 300);
});

// What each safe fix is asked to change, where that is something that the player sees.
const fixed = {
    // The model needs an attribute before DATA-ID; it is one that means nothing.
    "session-data-id-missing": ["sessionData.X-SPARE"],
    "session-data-value-missing": ["sessionData.X-SPARE"],
    // The number is the same with zeros before it.
    "key-iv-too-short": ["segments.keys.iv", "segments.map.keys.iv", "sessionKeys.iv"],
    "key-iv-malformed": ["segments.keys.iv", "segments.map.keys.iv", "sessionKeys.iv"],
    "target-duration-too-small": ["targetDuration"],
    "version-too-low": ["version"],
    "extinf-comma-missing": ["segments.title"],
    "session-key-twice": ["sessionKeys.number"],
    "session-key-repeated": ["sessionKeys.number"],
    // EXT-X-DISCONTINUITY-SEQUENCE is moved before the first EXT-X-DISCONTINUITY, where RFC 8216 wants it; hls.js goes by the order of
    // the two, and counts the discontinuity of the first segment only after it.
    "segment-tag-unknown": ["segments.discontinuities"],
};

/** The rules that find something in each example, and have a fix for it if those are asked for. */
function rulesOf(profile, ...options) {
    const { stdout } = run("check", "--format", "json", "--severity", "note", "--profile", profile, ...options, examples);
    const isCounted = ({ fixes }) => options.length === 0 || fixes !== undefined;
    return new Map(
        JSON.parse(stdout).files.map(({ path, findings }) => [path, findings.filter(isCounted).map(({ rule }) => rule)]),
    );
}

for (const [profile, least] of [
    ["rfc8216", 40],
    ["rfc8216bis", 40],
    ["library", 40],
]) {
    test(`safe fixes of ${profile} change nothing that a player sees but what they mend`, () => {
        const rules = rulesOf(profile, "--fixes");
        compareAll((file, text) => {
            if (rules.get(file).length === 0) return null;
            const mended = run("fix", "--quiet", "--profile", profile, "-o", "-", file).stdout;
            if (mended === text) return null;
            return { after: viewOf(mended), allowed: rules.get(file).flatMap((rule) => fixed[rule] ?? []) };
        }, least);
    });
}

const keys = ["segments.keys", "segments.map.keys"];
const order = "order";

// What each finding of the profile library names of what `render` changes, as far as the player sees it.
const rendered = {
    "attribute-empty-not-written": ["renditions"],
    "attribute-ignored": ["variants.attributes", "iFrameVariants.attributes", "renditions", "sessionData"],
    "attribute-read-otherwise": ["renditions"],
    "attribute-repeated": ["variants.attributes", "variants.bitrate"],
    "byte-range-empty-not-written": ["segments.range"],
    "byte-range-from-uri": ["segments.range"],
    "carriage-return-dropped": ["segments.number"],
    "content-after-end": ["segments.number"],
    "date-time-added": ["segments.date"],
    "date-time-not-iso-8601": ["segments.date"],
    "date-time-offset-not-applied": ["segments.date"],
    "date-time-seconds-shortened": ["segments.date"],
    "date-time-zero-not-written": ["segments.date"],
    "default-not-written": ["version", "renditions.FORCED", "renditions.AUTOSELECT"],
    "define-not-written": ["variables"],
    "header-ends-playlist": ["variants.number"],
    "i-frame-variant-captions-added": ["iFrameVariants.attributes.CLOSED-CAPTIONS"],
    "key-and-map-repeated": keys,
    "map-before-key": ["segments.map.keys"],
    "number-not-decimal": ["variants.attributes.BANDWIDTH"],
    "pattern-not-written": ["segments.number"],
    "rendition-audio-track-type-not-written": ["renditions.AUDIO-TRACK-TYPE"],
    "rendition-autoselect-implied": ["renditions.AUTOSELECT"],
    "rendition-autoselect-overruled": ["renditions.AUTOSELECT"],
    "rendition-characteristics-changed": ["renditions.CHARACTERISTICS"],
    "rendition-repeated": ["renditions.number"],
    "renditions-reordered": [order],
    "segment-duration-negative": ["segments.uri"],
    "segment-duration-rounded": ["segments.duration"],
    "segment-empty-title-gains-comma": ["segments.title"],
    "segment-tag-replaced": keys,
    "segment-title-gains-comma": ["segments.title"],
    "session-data-attribute-lost": ["sessionData"],
    "session-key-not-written": ["sessionKeys"],
    "start-added": ["start"],
    "start-offset-rounded": ["start"],
    "start-zero-not-written": ["start"],
    "tag-ignored": ["dateRanges", "steering", "variables", "segments.map"],
    "variant-captions-none-added": ["variants.attributes.CLOSED-CAPTIONS"],
    "variants-reordered": [order],
};

test("what render changes of what a player sees, the findings of the library name", () => {
    const rules = rulesOf("library");
    compareAll((file) => {
        const { stdout, status } = run("render", "--quiet", file);
        if (status !== 0) return null;
        const allowed = rules.get(file).flatMap((rule) => rendered[rule] ?? []);
        return { after: viewOf(stdout), allowed, unordered: allowed.includes(order) };
    }, 100);
});

test("a difference that is not named is found", () => {
    const text = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment1.ts\n";
    assert.deepEqual(differences(viewOf(text), viewOf(text)), []);
    assert.deepEqual(differences(viewOf(text), viewOf(text.replace("segment1", "segment2"))), ["segments.uri"]);
    assert.equal(isExplained("segments.uri", ["segments.title", "segments.u"]), false);
    assert.equal(isExplained("segments.keys.iv", keys), true);
});
