// Memory: that it comes back, and what happens when there is no more.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { fileURLToPath } from "node:url";

const folder = new URL(".", import.meta.resolve("velhls"));
const { load } = await import(new URL("load.js", folder));
const { makeLibrary } = await import(new URL("library.js", folder));

const text = `#EXTM3U\n${Array.from({ length: 20_000 }, (_, i) => `#EXTINF:6,\nsegment${i}.ts\n`).join("")}`;

const fresh = async () => {
    const memory = await load(new URL("velhls.wasm", folder));
    return { memory, library: makeLibrary(memory) };
};

const pagesOf = ({ calls }) => calls.memory.buffer.byteLength / 65536;

test("a module asks for no more than the library gives it", () => {
    const given = new Set([
        "env.emscripten_notify_memory_growth",
        "wasi_snapshot_preview1.environ_get",
        "wasi_snapshot_preview1.environ_sizes_get",
        "wasi_snapshot_preview1.proc_exit",
    ]);
    for (const name of ["velhls.wasm", "velhls-parse.wasm"]) {
        const module = new WebAssembly.Module(readFileSync(fileURLToPath(new URL(name, folder))));
        for (const { module: from, name: wanted } of WebAssembly.Module.imports(module)) {
            assert.ok(given.has(`${from}.${wanted}`), `${name}: ${from}.${wanted}`);
        }
    }
});

test("what is freed is used again", async () => {
    const { memory, library } = await fresh();
    const once = () => {
        const playlist = library.parse(text);
        assert.equal(playlist.segments.at(-1).uri, "segment19999.ts");
        playlist.uris;
        playlist.free();
        library.check(text);
        library.fix(text);
        library.compare(text, text);
        library.render(text);
        library.write(text.replace("#EXTM3U\n", "#EXTM3U\n#EXT-X-TARGETDURATION:6\n"));
        const document = new library.Document(text);
        document.apply(document.removeSegment(7), document.replaceUri(9, "x.ts"));
        document.free();
        assert.throws(() => library.parse("#EXTM3U\n#EXTINF:x,\nsegment.ts\n"));
    };
    once();
    once();
    const pages = pagesOf(memory);
    for (let i = 0; i < 5; ++i) once();
    assert.equal(pagesOf(memory), pages);
});

test("what is collected is used again", async () => {
    const { setFlagsFromString } = await import("node:v8");
    const { runInNewContext } = await import("node:vm");
    setFlagsFromString("--expose-gc");
    const collect = runInNewContext("gc");
    const { memory, library } = await fresh();
    for (let i = 0; i < 40; ++i) {
        library.parse(text);
        collect();
        await new Promise((done) => setTimeout(done, 1));
    }
    const bytesOfOne = text.length * 20;
    assert.ok(pagesOf(memory) * 65536 < bytesOfOne * 10, `${pagesOf(memory)} pages`);
});

test("memory that runs out is a RangeError, and what was there stays", async () => {
    const { memory, library } = await fresh();
    const { calls } = memory;
    const playlist = library.parse(text);
    const taken = [];
    for (let size = 2 ** 30; size >= 2 ** 12; size /= 2) {
        for (let at; (at = calls.malloc(size)) !== 0;) taken.push(at);
    }
    const out = { name: "RangeError", message: "memory ran out" };
    assert.throws(() => library.parse(text), out);
    assert.throws(() => library.check(text), out);
    assert.throws(() => new library.Document(text), out);
    assert.throws(() => playlist.uris, out);
    // The text fits, and what is made of it does not.
    calls.free(taken.pop());
    for (let size = 64; size < 2 ** 20; size *= 2) {
        const part = text.slice(0, size);
        const before = calls.malloc(1);
        calls.free(before);
        try {
            library.parse(part, { kind: "media" }).free();
        } catch (error) {
            if (error.name !== "PlaylistError") assert.equal(error.message, out.message);
        }
    }
    for (const at of taken) calls.free(at);
    assert.equal(library.parse(text).segments.length, 20_000);
    assert.equal(playlist.uris.length, 20_000);
});
