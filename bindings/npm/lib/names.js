// Constants of velhls.h by the names that they have here.
import { described } from "./memory.js";

export const kinds = [null, "master", "media"];
export const severities = ["note", "warning", "error"];
export const fixClasses = ["safe", "lossy", "guess"];
export const changeKinds = ["added", "removed", "changed"];
export const lineKinds = ["blank", "uri", "comment", "tag"];
export const uses = ["playlist", "session-data"];

// Each one's bit is its place.
const profiles = ["rfc8216", "rfc8216bis", "apple", "library"];

const shown = (value) => (typeof value === "string" ? `"${value}"` : described(value));

/** The number of a kind; 0 where it is left to the tags. */
export function kindNamed(kind) {
    const number = kinds.indexOf(kind ?? null);
    if (number < 0) throw new TypeError(`expected the kind "master" or "media", seen ${shown(kind)}`);
    return number;
}

/** The bits of profiles. */
export function profilesNamed(names) {
    let bits = 0;
    for (const name of typeof names === "string" ? [names] : names) {
        const place = profiles.indexOf(name);
        if (place < 0) throw new TypeError(`expected the profile ${profiles.join(", ")}, seen ${shown(name)}`);
        bits |= 1 << place;
    }
    return bits;
}
