import { readFileSync } from "node:fs";

import { makeMemory } from "./memory.js";

/** Makes an instance of the module in a file. */
export const load = (url) =>
    makeMemory((imports) => new WebAssembly.Instance(new WebAssembly.Module(readFileSync(url)), imports));
