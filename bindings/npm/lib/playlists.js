// Both models: read, as objects and as columns.
import { PlaylistError } from "./errors.js";
import { Handle } from "./handle.js";
import * as layout from "./layout.js";
import { List } from "./list.js";
import { isBytes } from "./memory.js";
import { kindNamed, kinds } from "./names.js";

const playlistTypes = ["", "EVENT", "VOD"];
const methods = ["NONE", "AES-128", "SAMPLE-AES"];
const renditionTypes = ["AUDIO", "VIDEO", "SUBTITLES", "CLOSED-CAPTIONS"];

/**
 * The models over a module's memory. `whyNeither` gives the reason for a text, by its address and length, of which no tag tells
 * what it is.
 */
export function makePlaylists(memory, whyNeither) {
    const { calls } = memory;

    function keyAt(address) {
        const info = memory.structure(calls.velhls_key_get, address, layout.velhls_key_info);
        return {
            method: methods[info.method],
            uri: info.uri,
            iv: info.iv,
            keyFormat: info.format,
            keyFormatVersions: Array.from(new Int32Array(memory.copy(info.versions, info.versionCount * 4).buffer)),
        };
    }

    const mapAt = (address) => memory.structure(calls.velhls_map_get, address, layout.velhls_map_info);

    /** What records share is one object for all of them. */
    function shared(makeAt) {
        const made = new Map();
        return (address) => {
            if (address === 0) return null;
            let object = made.get(address);
            if (object === undefined) made.set(address, (object = makeAt(address)));
            return object;
        };
    }

    /** One value for each record: copied, so that no growth of the memory and no `free` takes it away. */
    function column(Values, call, handle, count) {
        const size = count * Values.BYTES_PER_ELEMENT;
        return memory.withBytes(size, (at) => {
            memory.done(call(handle, 0, count, at));
            return new Values(memory.copy(at, size).buffer);
        });
    }

    /** Texts of records, which lie anywhere. */
    function texts(call, handle, count) {
        return memory.withBytes(count * 8, (at) => {
            memory.done(call(handle, 0, count, at));
            return Array.from({ length: count }, (_, index) =>
                memory.text(memory.view.getUint32(at + index * 8, true), memory.view.getUint32(at + index * 8 + 4, true)),
            );
        });
    }

    class MediaPlaylist extends Handle {
        #key = shared(keyAt);
        #map = shared(mapAt);
        #length;

        constructor(address, isOfBytes) {
            super(memory, address, calls.velhls_media_free, isOfBytes);
            const info = memory.structure(calls.velhls_media_get, address, layout.velhls_media_info);
            this.#length = info.segmentCount;
            this.hasHeader = info.hasHeader;
            this.version = info.version;
            this.targetDuration = info.targetDuration;
            this.playlistType = playlistTypes[info.playlistType];
            this.endList = info.endList;
            this.mediaSequence = info.mediaSequence;
            this.discontinuitySequence = info.discontinuitySequence;
            this.iFramesOnly = info.iFramesOnly;
            this.independentSegments = info.independentSegments;
            this.startTimeOffset = info.startTimeOffset;
            this.startPrecise = info.startPrecise;
            this.discontinuitySeen = info.discontinuitySeen;
            this.variables = this.#variables(info.variableCount);
        }

        get kind() {
            return "media";
        }

        get segments() {
            const address = Handle.address(this);
            return new List(this.#length, (index) => this.#segment(address, index));
        }

        get uris() {
            const address = Handle.address(this);
            return memory.withBytes(this.#length * 4, (at) => {
                memory.done(calls.velhls_media_joined_uris(address, 0, this.#length, memory.out, at));
                const text = memory.made;
                try {
                    const ends = new Uint32Array(memory.copy(at, this.#length * 4).buffer);
                    return parted(calls.velhls_text_data(text) >>> 0, ends);
                } finally {
                    calls.velhls_text_free(text);
                }
            });
        }

        get titles() {
            return texts(calls.velhls_media_titles, Handle.address(this), this.#length);
        }

        get durations() {
            return this.#column(Float64Array, calls.velhls_media_durations);
        }

        get startTimes() {
            return this.#column(Float64Array, calls.velhls_media_start_times);
        }

        get programDateTimes() {
            return this.#column(Float64Array, calls.velhls_media_program_date_times);
        }

        get mediaSequences() {
            return this.#column(BigUint64Array, calls.velhls_media_sequences);
        }

        get discontinuitySequences() {
            return this.#column(BigUint64Array, calls.velhls_media_discontinuity_sequences);
        }

        get discontinuities() {
            return this.#column(Uint8Array, calls.velhls_media_discontinuities);
        }

        get byteRanges() {
            const address = Handle.address(this);
            const size = this.#length * 8;
            return memory.withBytes(size * 2, (at) => {
                memory.done(calls.velhls_media_byte_ranges(address, 0, this.#length, at, at + size));
                return {
                    lengths: new BigInt64Array(memory.copy(at, size).buffer),
                    offsets: new BigInt64Array(memory.copy(at + size, size).buffer),
                };
            });
        }

        #column(Values, call) {
            return column(Values, call, Handle.address(this), this.#length);
        }

        #segment(address, index) {
            if (Handle.address(this) !== address) return undefined;
            const segment = memory.structure(calls.velhls_media_segment, address, layout.velhls_segment, index);
            segment.key = this.#key(segment.key);
            segment.map = this.#map(segment.map);
            return segment;
        }

        #variables(count) {
            const address = Handle.address(this);
            const at = memory.scratch;
            const textAt = (place) => memory.text(memory.view.getUint32(place, true), memory.view.getUint32(place + 4, true));
            return new Map(
                Array.from({ length: count }, (_, index) => {
                    memory.done(calls.velhls_media_variable(address, index, at, at + 8));
                    return [textAt(at), textAt(at + 8)];
                }),
            );
        }
    }

    /** Texts that lie one directly after the other. A slice of a string costs less than a text of its own. */
    function parted(address, ends) {
        const length = ends.length === 0 ? 0 : ends[ends.length - 1];
        const joined = memory.text(address, length);
        const isAscii = joined.length === length;
        // Array.from would ask an iterator, which takes longer.
        const texts = new Array(ends.length);
        for (let index = 0, begin = 0; index < ends.length; ++index) {
            const end = ends[index];
            texts[index] = isAscii ? joined.slice(begin, end) : memory.text(address + begin, end - begin);
            begin = end;
        }
        return texts;
    }

    class MasterPlaylist extends Handle {
        #info;
        #key = shared(keyAt);

        constructor(address, isOfBytes) {
            super(memory, address, calls.velhls_master_free, isOfBytes);
            const info = memory.structure(calls.velhls_master_get, address, layout.velhls_master_info);
            this.#info = info;
            this.hasHeader = info.hasHeader;
            this.version = info.version;
            this.independentSegments = info.independentSegments;
            this.startTimeOffset = info.startTimeOffset;
            this.startPrecise = info.startPrecise;
        }

        get kind() {
            return "master";
        }

        get variants() {
            return this.#list(this.#info.variantCount - this.#info.iFrameVariantCount, (index) => this.#variant(index));
        }

        get iFrameVariants() {
            const first = this.#info.variantCount - this.#info.iFrameVariantCount;
            return this.#list(this.#info.iFrameVariantCount, (index) => this.#variant(first + index));
        }

        get renditions() {
            return this.#list(this.#info.renditionCount, (index) => this.#rendition(index));
        }

        get sessionData() {
            return this.#list(this.#info.sessionDataCount, (index) =>
                this.#record(calls.velhls_master_session_data, layout.velhls_session_data, index),
            );
        }

        get sessionKeys() {
            return this.#list(this.#info.sessionKeyCount, (index) => {
                memory.done(calls.velhls_master_session_key(Handle.address(this), index, memory.out));
                return this.#key(memory.made);
            });
        }

        get variantUris() {
            return this.#texts(calls.velhls_master_variant_uris, this.#info.variantCount);
        }

        get bandwidths() {
            return this.#column(calls.velhls_master_bandwidths);
        }

        get averageBandwidths() {
            return this.#column(calls.velhls_master_average_bandwidths);
        }

        get codecs() {
            return this.#texts(calls.velhls_master_codecs, this.#info.variantCount);
        }

        get resolutions() {
            return this.#texts(calls.velhls_master_resolutions, this.#info.variantCount);
        }

        get renditionUris() {
            return this.#texts(calls.velhls_master_rendition_uris, this.#info.renditionCount);
        }

        #list(length, make) {
            Handle.address(this);
            return new List(length, make);
        }

        #record(call, structure, index) {
            return memory.structure(call, Handle.address(this), structure, index);
        }

        #texts(call, count) {
            return texts(call, Handle.address(this), count);
        }

        #column(call) {
            return column(BigUint64Array, call, Handle.address(this), this.#info.variantCount);
        }

        #variant(index) {
            const { audioGroup, videoGroup, subtitlesGroup, closedCaptionsGroup, ...variant } = this.#record(
                calls.velhls_master_variant,
                layout.velhls_variant,
                index,
            );
            return {
                ...variant,
                audio: audioGroup,
                video: videoGroup,
                subtitles: subtitlesGroup,
                closedCaptions: closedCaptionsGroup,
            };
        }

        #rendition(index) {
            const { type, characteristicCount, ...rendition } = this.#record(
                calls.velhls_master_rendition,
                layout.velhls_rendition,
                index,
            );
            const characteristics = texts(
                (handle, first, count, at) => calls.velhls_master_characteristics(handle, index, at, count),
                Handle.address(this),
                characteristicCount,
            );
            return { type: renditionTypes[type], ...rendition, characteristics };
        }
    }

    function kindOf(address, length) {
        memory.done(calls.velhls_detect_kind(address, length, memory.out));
        const kind = kinds[memory.made];
        if (kind === null) throw new PlaylistError(whyNeither(address, length));
        return kind;
    }

    function parse(text, { kind } = {}) {
        const asked = kinds[kindNamed(kind)];
        const isOfBytes = isBytes(text);
        return memory.withText(text, (address, length) => {
            const isMaster = (asked ?? kindOf(address, length)) === "master";
            const call = isMaster ? calls.velhls_master_parse : calls.velhls_media_parse;
            memory.doneOrTold(call(address, length, memory.out, memory.error));
            return isMaster ? new MasterPlaylist(memory.made, isOfBytes) : new MediaPlaylist(memory.made, isOfBytes);
        });
    }

    return { MasterPlaylist, MediaPlaylist, parse };
}
