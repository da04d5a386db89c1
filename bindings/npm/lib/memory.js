// The memory of the WebAssembly module: what goes into it and comes out of it. All numbers are little-endian, and addresses have 32
// bits.
import { PlaylistError, RefusedError } from "./errors.js";
import { velhls_edit, velhls_reason } from "./layout.js";

const ok = 0;
const rejected = 1;
const refused = 2;
const outOfRange = 3;
const notFound = 4;
const invalidArgument = 5;
const outOfMemory = 6;
const tooLarge = 7;

// Of ASCII texts that are no longer, TextDecoder takes longer than a look at each byte.
const fewBytes = 32;

const encoder = new TextEncoder();
// A byte order mark is a part of the text.
const decoder = new TextDecoder("utf-8", { ignoreBOM: true });
const strictDecoder = new TextDecoder("utf-8", { ignoreBOM: true, fatal: true });

/** Whether a text is one of bytes, and not of characters. */
export const isBytes = (text) => typeof text !== "string";

/** What kind of thing a value is, for messages. */
export const described = (value) =>
    value === null ? "null" : typeof value === "object" ? (value.constructor?.name ?? "an object") : typeof value;

function areAscii(bytes, begin, end) {
    let all = 0;
    for (let at = begin; at < end; ++at) all |= bytes[at];
    return all < 0x80;
}

/** A short text in ASCII. Four characters at a time, since each addition makes a string. */
function asciiText(bytes, begin, end) {
    const code = String.fromCharCode;
    let text = "";
    let at = begin;
    for (; at + 4 <= end; at += 4) text += code(bytes[at], bytes[at + 1], bytes[at + 2], bytes[at + 3]);
    for (; at < end; ++at) text += code(bytes[at]);
    return text;
}

function bytesOf(text) {
    if (text instanceof Uint8Array) return text;
    if (text instanceof ArrayBuffer) return new Uint8Array(text);
    if (ArrayBuffer.isView(text)) return new Uint8Array(text.buffer, text.byteOffset, text.byteLength);
    throw new TypeError(`expected a text as a string or bytes, seen ${described(text)}`);
}

/** Makes the memory of an instance, which `instantiate` makes when it is given what the module imports. */
export async function makeMemory(instantiate) {
    const memory = new Memory();
    const imports = {
        env: { emscripten_notify_memory_growth: () => memory.refresh() },
        wasi_snapshot_preview1: {
            proc_exit: (code) => {
                throw new Error(`velhls ended with ${code}, a fault of the library`);
            },
            // There are no environment variables.
            environ_sizes_get: (count, bytes) => {
                memory.view.setUint32(count, 0, true);
                memory.view.setUint32(bytes, 0, true);
                return 0;
            },
            environ_get: () => 0,
        },
    };
    return memory.begin(await instantiate(imports));
}

class Memory {
    begin(instance) {
        this.calls = instance.exports;
        this.refresh();
        this.calls._initialize();
        this.scratch = this.allocate(1024);
        /** Where calls store what they make: an address, a number, another. */
        this.out = this.scratch + 512;
        this.error = this.out + 16;
        this.dropped = new FinalizationRegistry(({ address, free }) => free(address));
        return this;
    }

    /** Views end when the memory grows, which only a call into the module makes it do. */
    refresh() {
        const { buffer } = this.calls.memory;
        this.bytes = new Uint8Array(buffer);
        this.view = new DataView(buffer);
    }

    allocate(size) {
        const address = this.calls.malloc(Math.max(size, 1)) >>> 0;
        if (address === 0) throw new RangeError("memory ran out");
        return address;
    }

    free(address) {
        this.calls.free(address);
    }

    /** Calls `use` with the address of so many bytes, which live until it ends. */
    withBytes(size, use) {
        const address = this.allocate(size);
        try {
            return use(address);
        } finally {
            this.free(address);
        }
    }

    /** Calls `use` with the address and the number of the bytes of a text, which live until it ends. */
    withText(text, use) {
        const { address, length } = typeof text === "string" ? this.#encode(text) : this.#copy(bytesOf(text));
        try {
            return use(address, length);
        } finally {
            this.free(address);
        }
    }

    #copy(bytes) {
        const address = this.allocate(bytes.length);
        this.bytes.set(bytes, address);
        return { address, length: bytes.length };
    }

    /** Most texts have a byte for each character; where one has more, room is made for the most that can follow. */
    #encode(text) {
        const address = this.allocate(text.length);
        const { read, written } = encoder.encodeInto(text, this.bytes.subarray(address, address + text.length));
        if (read === text.length) return { address, length: written };
        this.free(address);
        return this.#copy(encoder.encode(text));
    }

    /** Bytes as a string. What is not UTF-8 becomes U+FFFD. Null for the null pointer. */
    text(address, length) {
        if (length === 0) return address === 0 ? null : "";
        const { bytes } = this;
        const end = address + length;
        if (length <= fewBytes && areAscii(bytes, address, end)) return asciiText(bytes, address, end);
        return decoder.decode(bytes.subarray(address, end));
    }

    /** The same as bytes that are the caller's. */
    copy(address, length) {
        return this.bytes.slice(address, address + length);
    }

    /** A string, or bytes where those are not UTF-8. */
    exact(address, length) {
        const bytes = this.bytes.subarray(address, address + length);
        try {
            return strictDecoder.decode(bytes);
        } catch {
            return bytes.slice();
        }
    }

    /** A whole text as it is wanted: bytes, or a string. */
    whole(address, length, asBytes) {
        return asBytes ? this.copy(address, length) : decoder.decode(this.bytes.subarray(address, address + length));
    }

    /** Throws what a status means, but for success. */
    done(status, whyRefused = "this cannot be done to this text or model") {
        if (status === ok) return;
        if (status === outOfRange) throw new RangeError("there is no such record, line or place");
        if (status === invalidArgument) throw new TypeError("there is no such value");
        if (status === refused) throw new RefusedError(whyRefused);
        if (status === outOfMemory) throw new RangeError("memory ran out");
        if (status === tooLarge) throw new RangeError("the text is too large");
        throw new Error(`a fault of the library: status ${status}`);
    }

    /** The same of a call that may have stored an error at `error`. */
    doneOrTold(status) {
        if (status !== rejected && status !== refused) return this.done(status);
        const error = this.view.getUint32(this.error, true);
        if (error === 0) return this.done(status);
        try {
            const reason = this.structure(this.calls.velhls_error_reason, error, velhls_reason);
            if (status === rejected) throw new PlaylistError(reason);
            throw new RefusedError(reason.line === 0 ? reason.message : `line ${reason.line}: ${reason.message}`);
        } finally {
            this.calls.velhls_error_free(error);
        }
    }

    /** Calls what fills a structure, and reads that. */
    structure(call, handle, layout, ...places) {
        this.view.setUint32(this.scratch, layout.size, true);
        this.done(call(handle, ...places, this.scratch));
        return layout.read(this, this.scratch);
    }

    /** The same of what may not be there: null then. */
    findStructure(call, layout, ...places) {
        this.view.setUint32(this.scratch, layout.size, true);
        const status = call(...places, this.scratch);
        if (status === notFound) return null;
        this.done(status);
        return layout.read(this, this.scratch);
    }

    /** So many structures, the places of which count from 0. */
    structures(count, call, handle, layout, ...places) {
        return Array.from({ length: count }, (_, index) => this.structure(call, handle, layout, ...places, index));
    }

    /** Writes options, and gives their address. */
    options(layout, values) {
        this.view.setUint32(this.scratch, layout.size, true);
        layout.write(this, this.scratch, values);
        return this.scratch;
    }

    /** An edit, whose replacement is a string, or bytes where these are not UTF-8. */
    edit(call, handle, ...places) {
        const { offset, length } = this.structure(call, handle, velhls_edit, ...places);
        const at = this.scratch + velhls_edit.offsets.replacement;
        const replacement = this.exact(this.view.getUint32(at, true), this.view.getUint32(at + 4, true));
        return { offset, length, replacement };
    }

    /** What was stored at `out`. */
    get made() {
        return this.view.getUint32(this.out, true);
    }

    /** Takes the text that a call stored at `out`. */
    takeText(asBytes) {
        const { calls } = this;
        const text = this.made;
        try {
            return this.whole(calls.velhls_text_data(text) >>> 0, calls.velhls_text_length(text) >>> 0, asBytes);
        } finally {
            calls.velhls_text_free(text);
        }
    }

    /** Before a call that stores no error: none is there then. */
    forget() {
        this.view.setUint32(this.error, 0, true);
    }

    /** Has a handle freed with its owner, at the latest. */
    own(owner, address, free) {
        this.dropped.register(owner, { address, free }, owner);
        return address;
    }

    disown(owner) {
        this.dropped.unregister(owner);
    }
}
