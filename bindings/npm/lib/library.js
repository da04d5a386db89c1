import { makeChecks } from "./checks.js";
import { makeDocuments } from "./document.js";
import { makePlaylists } from "./playlists.js";
import { makeWriting } from "./writing.js";

/** All of velhls over a module's memory. */
export function makeLibrary(memory) {
    const Document = makeDocuments(memory);
    const { whyRejected, ...checks } = makeChecks(memory, Document);
    const playlists = makePlaylists(memory, whyRejected);
    return { Document, ...playlists, ...checks, ...makeWriting(memory, playlists) };
}
