/// <reference lib="esnext.disposable" />
/**
 * HTTP Live Streaming playlists (RFC 8216), to be read: the part of velhls that neither checks nor writes, in a smaller module.
 *
 * Numbers beyond 2^53 are the nearest ones that JavaScript has; columns of `bigint` are exact. Bytes that are not UTF-8 become
 * U+FFFD in strings. URIs are not resolved, and nothing is fetched.
 */

/** A text: a string, or bytes that are UTF-8 or anything else. */
export type Text = string | Uint8Array | ArrayBuffer | ArrayBufferView;

/** What kind of playlist a text is. */
export type Kind = "master" | "media";

/** Why a playlist is rejected, and where. */
export interface Reason {
    /** The name of the rule that it breaks. */
    rule: string;
    /** Counted from 1; 0 where it stands nowhere. */
    line: number;
    /** The byte in that line, counted from 1; 0 where it stands nowhere. */
    column: number;
    /** In bytes; 0 where something is missing. */
    length: number;
    /** What was expected, and what was seen. */
    message: string;
}

/** The library rejects a playlist. */
export class PlaylistError extends Error {
    readonly reason: Reason;
}

/** A list whose objects are made when they are asked for, each time anew. */
export interface List<Item> extends Iterable<Item> {
    readonly length: number;
    /** The item of this place, counted from the end where it is negative; undefined without one. */
    at(index: number): Item | undefined;
    map<Result>(change: (item: Item, index: number) => Result): Result[];
}

/** What holds memory of the WebAssembly module until it is freed, or collected. Once freed, it throws a TypeError. */
interface Held {
    free(): void;
    /** The same, for `using`. */
    [Symbol.dispose](): void;
}

export interface ByteRange {
    /** Bytes. */
    length: number;
    /** The first byte; -1 where the playlist says none. */
    offset: number;
}

/** EXT-X-KEY or EXT-X-SESSION-KEY. */
export interface Key {
    method: "NONE" | "AES-128" | "SAMPLE-AES";
    /** Empty for NONE. */
    uri: string;
    /** As it was written; empty when absent. */
    iv: string;
    /** Empty when absent. */
    keyFormat: string;
    keyFormatVersions: number[];
}

/** EXT-X-MAP. */
export interface MediaInitialization {
    uri: string;
    byteRange: ByteRange | null;
}

export interface Segment {
    uri: string;
    /** Seconds. */
    duration: number;
    /** Of EXTINF, with the comma before it; empty without one. */
    title: string;
    /** The durations of the segments before it, summed up: seconds. */
    startTime: number;
    mediaSequence: number;
    discontinuitySequence: number;
    /** EXT-X-DISCONTINUITY stands before it. */
    discontinuity: boolean;
    /** Seconds since the Unix epoch; 0 means none. */
    programDateTime: number;
    byteRange: ByteRange | null;
    /** The key in force: one object for all segments that share it. */
    key: Key | null;
    /** The initialization section in force, likewise. */
    map: MediaInitialization | null;
    /** EXT-X-CUE-IN stood among its tags (vendor extension). */
    cueIn: boolean;
    /** The text after EXT-X-CUE-OUT (vendor extension). */
    cueOut: string;
    /** The text after EXT-X-CUE-OUT-CONT (vendor extension). */
    cueOutCont: string;
}

/** A media playlist: it is read, and not changed. Edits are made in a `Document`. */
export interface MediaPlaylist extends Held {
    readonly kind: "media";
    /** "#EXTM3U" was read. */
    readonly hasHeader: boolean;
    /** 1 without EXT-X-VERSION. */
    readonly version: number;
    /** Seconds. */
    readonly targetDuration: number;
    readonly playlistType: "" | "EVENT" | "VOD";
    readonly mediaSequence: number;
    readonly discontinuitySequence: number;
    readonly endList: boolean;
    readonly iFramesOnly: boolean;
    readonly independentSegments: boolean;
    /** Seconds; 0 without EXT-X-START. */
    readonly startTimeOffset: number;
    readonly startPrecise: boolean;
    /** A segment whose first tag was EXT-X-DISCONTINUITY was read. */
    readonly discontinuitySeen: boolean;
    /** Of EXT-X-DEFINE. */
    readonly variables: Map<string, string>;
    readonly segments: List<Segment>;

    // Columns: one value for each segment, made anew whenever they are asked for, and the caller's.
    readonly uris: string[];
    readonly titles: string[];
    /** Seconds. */
    readonly durations: Float64Array;
    /** Seconds. */
    readonly startTimes: Float64Array;
    /** Seconds since the Unix epoch; 0 means none. */
    readonly programDateTimes: Float64Array;
    readonly mediaSequences: BigUint64Array;
    readonly discontinuitySequences: BigUint64Array;
    /** 1 where EXT-X-DISCONTINUITY stands before the segment. */
    readonly discontinuities: Uint8Array;
    /** -1 for a length where there is no range, and for an offset where there is none. */
    readonly byteRanges: { lengths: BigInt64Array; offsets: BigInt64Array };
}
export const MediaPlaylist: abstract new () => MediaPlaylist;

export interface Variant {
    uri: string;
    /** Bits per second. */
    bandwidth: number;
    /** Bits per second; 0 when absent. */
    averageBandwidth: number;
    /** Empty when absent. */
    codecs: string;
    /** As it was written; empty when absent. */
    resolution: string;
    /** 0 when absent. */
    programId: number;
    /** EXT-X-I-FRAME-STREAM-INF. */
    isIFrame: boolean;
    /** Names of groups; null when absent. */
    audio: string | null;
    video: string | null;
    subtitles: string | null;
    /** Null for NONE, too. */
    closedCaptions: string | null;
    /** Of ZOR-STREAM-INF (vendor extension): bits per second; 0 without one. */
    nominalVideoBitrate: number;
    nominalAudioBitrate: number;
}

/** EXT-X-MEDIA. Texts are empty when absent. */
export interface Rendition {
    type: "AUDIO" | "VIDEO" | "SUBTITLES" | "CLOSED-CAPTIONS";
    isDefault: boolean;
    autoSelect: boolean;
    forced: boolean;
    uri: string;
    groupId: string;
    name: string;
    language: string;
    assocLanguage: string;
    instreamId: string;
    /** AUDIO-TRACK-TYPE (vendor extension). */
    audioTrackType: string;
    /** Sorted. */
    characteristics: string[];
}

/** EXT-X-SESSION-DATA. Texts are empty when absent. */
export interface SessionData {
    dataId: string;
    value: string;
    uri: string;
    language: string;
}

/** A master playlist: it is read, and not changed. Edits are made in a `Document`. */
export interface MasterPlaylist extends Held {
    readonly kind: "master";
    /** "#EXTM3U" was read. */
    readonly hasHeader: boolean;
    /** 1 without EXT-X-VERSION. */
    readonly version: number;
    readonly independentSegments: boolean;
    /** Seconds; -1 without EXT-X-START. */
    readonly startTimeOffset: number;
    readonly startPrecise: boolean;
    /** Of EXT-X-STREAM-INF, in the order of the playlist. */
    readonly variants: List<Variant>;
    /** Of EXT-X-I-FRAME-STREAM-INF, by bandwidth. */
    readonly iFrameVariants: List<Variant>;
    /** By type, GROUP-ID and NAME. */
    readonly renditions: List<Rendition>;
    readonly sessionData: List<SessionData>;
    readonly sessionKeys: List<Key>;

    // Columns: one value for each variant, the I-frame variants after the others.
    readonly variantUris: string[];
    /** Bits per second. */
    readonly bandwidths: BigUint64Array;
    /** Bits per second; 0 when absent. */
    readonly averageBandwidths: BigUint64Array;
    readonly codecs: string[];
    readonly resolutions: string[];
    /** One for each rendition. */
    readonly renditionUris: string[];
}
export const MasterPlaylist: abstract new () => MasterPlaylist;

/**
 * Reads a playlist, of the kind that its tags tell unless `kind` does. Throws a PlaylistError when it is rejected, and a
 * RangeError when memory runs out or the text is larger than 4 GiB.
 */
export function parse(text: Text, options: { kind: "master" }): MasterPlaylist;
export function parse(text: Text, options: { kind: "media" }): MediaPlaylist;
export function parse(text: Text, options?: { kind?: Kind }): MasterPlaylist | MediaPlaylist;
