import { PlaylistError, RefusedError } from "./errors.js";
import { makeLibrary } from "./library.js";
import { load } from "./load.js";

const library = makeLibrary(await load(new URL("./velhls.wasm", import.meta.url)));

export const {
    Document,
    MasterPlaylist,
    MediaPlaylist,
    check,
    checkPresentation,
    compare,
    fix,
    fixForModels,
    parse,
    references,
    render,
    rule,
    write,
} = library;
export { PlaylistError, RefusedError };
