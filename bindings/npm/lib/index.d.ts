/// <reference lib="esnext.disposable" />
/**
 * HTTP Live Streaming playlists (RFC 8216): parse, check, mend, compare, edit and write them.
 *
 * Columns, lengths and offsets count bytes of UTF-8. Texts come back as they went in: strings for strings, bytes for bytes.
 */
import type { Kind, List, MasterPlaylist, MediaPlaylist, Reason, Text } from "./parse.js";

export {
    MasterPlaylist,
    MediaPlaylist,
    PlaylistError,
    parse,
    type ByteRange,
    type Key,
    type Kind,
    type List,
    type MediaInitialization,
    type Reason,
    type Rendition,
    type Segment,
    type SessionData,
    type Text,
    type Variant,
} from "./parse.js";

/** What this text or model cannot be given. */
export class RefusedError extends Error {}

/** What a text comes back as. */
type As<Source> = Source extends string ? string : Uint8Array;

/** By whose rules a text is checked: RFC 8216, its successor, Apple's authoring rules, and what the library makes of it. */
export type Profile = "rfc8216" | "rfc8216bis" | "apple" | "library";

export type Severity = "note" | "warning" | "error";

/** A second place that a finding speaks of. */
export interface RelatedPlace {
    /** Of a presentation, the text that it is in; empty for that of the finding. */
    uri: string;
    line: number;
    column: number;
    length: number;
    message: string;
}

/** A change of some bytes of a text: offset and length count its bytes. A replacement that is not UTF-8 is given as bytes. */
export interface Edit {
    offset: number;
    length: number;
    replacement: string | Uint8Array;
}

/** What a fix does to what the playlist says: nothing; it loses something; it says something new. */
export type FixClass = "safe" | "lossy" | "guess";

/** A way to mend what a finding found. Its edits belong together. */
export interface Fix {
    fixClass: FixClass;
    /** What it does, in a few words that begin with a verb. */
    sentence: string;
    edits: Edit[];
}

export interface Finding {
    severity: Severity;
    /** The stable name of the rule. */
    rule: string;
    /** Of a presentation, the text that it stands in; otherwise empty. */
    uri: string;
    /** Counted from 1. */
    line: number;
    /** The byte in that line, counted from 1. */
    column: number;
    /** In bytes; 0 where something is missing. */
    length: number;
    /** What was expected, and what was seen. */
    message: string;
    source: string;
    profile: Profile;
    /** "4.3.2.1"; empty where there is none. */
    clause: string;
    /** "MUST", "SHOULD"…; empty where there is no clause. */
    level: string;
    related: RelatedPlace[];
    /** How many more findings of this rule are not listed. */
    suppressed: number;
    /** The best first; empty unless they were asked for. */
    fixes: Fix[];
}

export interface Report {
    /** What the text was read as; null when it is neither. */
    kind: Kind | null;
    findings: Finding[];
    /** Why the library rejects the text, whatever the profiles; null when it accepts it. */
    rejected: Reason | null;
}

/** Checks a text by RFC 8216, or by the profiles that are asked for; with `fixes` the findings have them. */
export function check(text: Text, options?: { profiles?: Profile | Iterable<Profile>; kind?: Kind; fixes?: boolean }): Report;

/** A fix that was taken. */
export interface Done {
    rule: string;
    profile: Profile;
    fixClass: FixClass;
    sentence: string;
    /** Of its first edit, in the text that was given. */
    line: number;
}

export interface Mended<Whole = string | Uint8Array> {
    /** The whole text, mended as far as that went. */
    text: Whole;
    /** What makes it of the text that was given. */
    edits: Edit[];
    done: Done[];
    /** How many rounds took something. After 64, the most there are, there may be more to take. */
    rounds: number;
    /** What is found in the mended text, with the fixes that were not taken. */
    left: Report;
}

/** Mends what the profiles find, and changes no other byte: by safe fixes, and by others if they are asked for. */
export function fix<Source extends Text>(
    text: Source,
    options?: { profiles?: Profile | Iterable<Profile>; kind?: Kind; lossy?: boolean; guess?: boolean },
): Mended<As<Source>>;

/** Makes what `parse` rejects acceptable, as far as that goes without changing what the playlist means. */
export function fixForModels<Source extends Text>(text: Source): Mended<As<Source>>;

/** A change between two versions of a playlist. */
export interface Change {
    kind: "added" | "removed" | "changed";
    /** What it happened to: "segment 268433". */
    path: string;
    /** Which part of that: "duration"; empty for the whole of it. */
    what: string;
    oldText: string;
    newText: string;
    /** 0 where there is none. */
    oldLine: number;
    newLine: number;
}

/**
 * Tells what changed from one version of a playlist to the next, and what of it RFC 8216 forbids. `elapsed` is the time between
 * them in seconds. Throws a RefusedError when they are of different kinds.
 */
export function compare(
    oldVersion: Text | Document,
    newVersion: Text | Document,
    options?: { elapsed?: number },
): { changes: Change[]; findings: Finding[] };

/** A URI that a master playlist names. */
export interface Reference {
    uri: string;
    use: "playlist" | "session-data";
    /** The line that it stands in first. */
    line: number;
}

/** The URIs that a master playlist names. */
export function references(master: Text | Document): Reference[];

/** What a URI of a presentation names: a text, or none with the reason why it was not read. */
export interface Resource {
    /** As the master playlist writes it. */
    uri: string;
    text: Text | Document | null;
    why?: string;
}

/** Checks what a master playlist and the playlists that it names must keep together. Nothing is fetched. */
export function checkPresentation(
    master: { uri: string; text: Text | Document },
    resources: Resource[],
    options?: { profiles?: Exclude<Profile, "library"> | Iterable<Exclude<Profile, "library">> },
): Finding[];

export interface Rule {
    severity: Severity;
    /** `render` leaves out what the rule finds. */
    isLostWhenWritten: boolean;
    id: string;
    /** One sentence: what it finds. */
    summary: string;
    expected: string;
    source: string;
    profile: Profile;
    clause: string;
    level: string;
}

/** The rule of this name; null without one. */
export function rule(name: string): Rule | null;

/** What a playlist, or one that a text is read as, is written from the model: its clean text. */
export function render<Source extends Text>(text: Source, options?: { kind?: Kind }): As<Source>;
export function render(playlist: MasterPlaylist | MediaPlaylist): string | Uint8Array;

export interface WriteOptions {
    /** Media: write EXT-X-CUE-OUT, -CONT and -IN (vendor extensions). On unless told otherwise. */
    cueMarkers?: boolean;
    /** Media: write every date that is known. */
    everyDate?: boolean;
    /** Media: the initialization sections are not encrypted. */
    clearInitializationSections?: boolean;
    /** Master: say CLOSED-CAPTIONS=NONE. */
    noClosedCaptions?: boolean;
    /** Master: write ZOR-STREAM-INF (vendor extension). */
    nominalBitrates?: boolean;
}

/** The same as RFC 8216 wants it. Throws a RefusedError for what cannot be written so. */
export function write<Source extends Text>(text: Source, options?: WriteOptions & { kind?: Kind }): As<Source>;
export function write(playlist: MasterPlaylist | MediaPlaylist, options?: WriteOptions): string | Uint8Array;

export interface Line {
    kind: "blank" | "uri" | "comment" | "tag";
    /** Counted from 1. */
    number: number;
    /** Where it begins in the text, in bytes. */
    offset: number;
    /** Without its end. */
    text: string;
    /** "\n", "\r\n", or nothing. */
    ending: string;
    /** Of a tag, and of a vendor's line, the name without "#"; otherwise empty. */
    name: string;
    /** What follows the colon; the URI of a URI line; the text of a comment. */
    value: string;
    /** A colon follows the name. */
    hasColon: boolean;
    /** The format has a tag of this name. */
    isKnown: boolean;
}

export interface Attribute {
    name: string;
    /** Without its quotes. */
    value: string;
    /** As it is written. */
    writtenValue: string;
    isQuoted: boolean;
    isWellFormed: boolean;
    /** The byte of the line at which it begins, counted from 1. */
    column: number;
}

/** A URI: a whole line, or the value of an attribute. */
export interface Uri {
    line: number;
    text: string;
    /** Empty for a URI line. */
    attribute: string;
}

/** A segment by its lines, which count from 1; 0 stands for none. */
export interface SegmentLines {
    firstLine: number;
    lastLine: number;
    uriLine: number;
    durationLine: number;
    byteRangeLine: number;
    dateLine: number;
    /** The keys in force, one for each KEYFORMAT. */
    keyLines: number[];
    /** The EXT-X-MAP in force. */
    mapLine: number;
    dateLineInForce: number;
    /** Seconds. */
    duration: number;
    /** Seconds. */
    startTime: number;
    mediaSequence: number;
    discontinuitySequence: number;
    hasByteRangeOffset: boolean;
    hasDate: boolean;
    byteRangeOffset: number;
    /** Microseconds since the Unix epoch. */
    date: number;
}

/** A variant by its lines, which count from 1; 0 stands for none. */
export interface VariantLines {
    tagLine: number;
    uriLine: number;
}

/**
 * The text of a playlist, understood: every line of any text, whatever `parse` rejects or drops. It never changes: what edits it
 * gives the edits, and `apply` the text with them, which differs in no other byte.
 */
export class Document {
    constructor(text: Text);
    /** As it was given: a string, or bytes. */
    readonly text: string | Uint8Array;
    readonly kind: Kind | null;
    readonly lines: List<Line>;
    readonly uris: List<Uri>;
    readonly segments: List<SegmentLines>;
    readonly variants: List<VariantLines>;
    /** The line of this number, counted from 1. Throws a RangeError where there is none. */
    line(number: number): Line;
    /** The attributes of a line; of two with one name both. */
    attributes(line: number): Attribute[];
    /** Sets, adds and removes (null) attributes of a line. Quotes are written as the format wants them. */
    changeAttributes(line: number, changes: Record<string, Text | null>): Edit[];
    /** Replaces what follows the colon of a tag. */
    replaceValue(line: number, value: Text): Edit[];
    /** Replaces the URI of this place in `uris`. */
    replaceUri(index: number, uri: Text): Edit[];
    insertBefore(line: number, text: Text): Edit[];
    insertAfter(line: number, text: Text): Edit[];
    removeLines(first: number, last: number): Edit[];
    /** Removes the segment of this place in `segments`: its URI and the tags that hold for it alone. */
    removeSegment(index: number): Edit[];
    /** Removes the variant of this place in `variants`: its tag and its URI. */
    removeVariant(index: number): Edit[];
    /** The text with all these edits. Throws a RefusedError when two of them overlap. */
    apply(...edits: (Edit | Edit[])[]): string | Uint8Array;
    free(): void;
    /** The same, for `using`. */
    [Symbol.dispose](): void;
}
