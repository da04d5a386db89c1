import { makeMemory } from "./memory.js";

async function fetched(url, imports) {
    const response = await fetch(url);
    if (!response.ok) throw new Error(`${url}: expected a WebAssembly module, seen status ${response.status}`);
    // Servers that do not know what .wasm is serve it as something else, which cannot be compiled while it comes.
    if (response.headers.get("Content-Type") === "application/wasm") return WebAssembly.instantiateStreaming(response, imports);
    return WebAssembly.instantiate(await response.arrayBuffer(), imports);
}

/** Makes an instance of the module at a URL: a file for node, whose `fetch` reads none. */
export function load(url) {
    const files = url.protocol === "file:" ? globalThis.process?.getBuiltinModule?.("node:fs") : undefined;
    return makeMemory(async (imports) => {
        const made = files ? await WebAssembly.instantiate(files.readFileSync(url), imports) : await fetched(url, imports);
        return made.instance;
    });
}
