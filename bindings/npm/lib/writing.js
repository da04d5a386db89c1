// Both models as texts.
import { Handle } from "./handle.js";
import * as layout from "./layout.js";

/** The functions that write, over a module's memory. */
export function makeWriting(memory, { MasterPlaylist, MediaPlaylist, parse }) {
    const { calls } = memory;

    /** Has `call` write a playlist, or one that a text is read as for it. */
    function written(source, kind, call) {
        if (source instanceof MediaPlaylist || source instanceof MasterPlaylist) return textOf(source, call);
        const playlist = parse(source, { kind });
        try {
            return textOf(playlist, call);
        } finally {
            playlist.free();
        }
    }

    function textOf(playlist, call) {
        memory.forget();
        memory.doneOrTold(call(playlist, Handle.address(playlist)));
        return memory.takeText(Handle.isOfBytes(playlist));
    }

    function render(source, { kind } = {}) {
        return written(source, kind, (playlist, address) =>
            (playlist.kind === "media" ? calls.velhls_media_render : calls.velhls_master_render)(address, memory.out),
        );
    }

    function write(source, { kind, ...asked } = {}) {
        const options = {
            cueMarkers: asked.cueMarkers ?? true,
            everyDate: asked.everyDate ?? false,
            clearInitializationSections: asked.clearInitializationSections ?? false,
            noClosedCaptions: asked.noClosedCaptions ?? false,
            nominalBitrates: asked.nominalBitrates ?? false,
        };
        return written(source, kind, (playlist, address) => {
            const at = memory.options(layout.velhls_write_options, options);
            const call = playlist.kind === "media" ? calls.velhls_media_write : calls.velhls_master_write;
            return call(address, at, memory.out, memory.error);
        });
    }

    return { render, write };
}
