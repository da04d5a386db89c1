import { makeMemory } from "./memory.js";

async function instantiated(url, imports) {
    const response = await fetch(url);
    if (!response.ok) throw new Error(`${url}: expected a WebAssembly module, seen status ${response.status}`);
    // Servers that do not know what .wasm is serve it as something else, which cannot be compiled while it comes.
    const compiled =
        response.headers.get("Content-Type") === "application/wasm"
            ? WebAssembly.instantiateStreaming(response, imports)
            : WebAssembly.instantiate(await response.arrayBuffer(), imports);
    return (await compiled).instance;
}

/** Makes an instance of the module at a URL. */
export const load = (url) => makeMemory((imports) => instantiated(url, imports));
