// The models alone, to be read: a smaller module, which neither checks nor writes.
import { PlaylistError } from "./errors.js";
import { load } from "./load.js";
import { makePlaylists } from "./playlists.js";

const memory = await load(new URL("./velhls-parse.wasm", import.meta.url));

const whyNeither = () => ({
    rule: "not-a-playlist",
    line: 1,
    column: 1,
    length: 0,
    message: "expected an HLS playlist, seen no tag that only a master or only a media playlist has",
});

export const { MasterPlaylist, MediaPlaylist, parse } = makePlaylists(memory, whyNeither);
export { PlaylistError };
