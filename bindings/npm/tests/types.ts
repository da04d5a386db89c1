// Compiled, and not run: what a program in TypeScript says of the package.
import {
    check,
    compare,
    Document,
    fix,
    MasterPlaylist,
    parse,
    PlaylistError,
    render,
    write,
    type Finding,
    type Segment,
} from "velhls";
import { parse as parseOnly } from "velhls/parse";

const playlist = parse("#EXTM3U\n");
if (playlist instanceof MasterPlaylist) {
    const bandwidths: BigUint64Array = playlist.bandwidths;
    for (const { uri, audio } of playlist.variants) console.log(uri, audio?.length, bandwidths[0]);
} else {
    const segments: Segment[] = [...playlist.segments];
    const sum: number = playlist.durations.reduce((left, right) => left + right, 0);
    console.log(segments[0]?.byteRange?.length, sum);
    playlist.free();
}
switch (playlist.kind) {
    case "master":
        console.log(playlist.renditions.length);
        break;
    case "media":
        console.log(playlist.targetDuration);
}
const media = parse(new Uint8Array(), { kind: "media" });
console.log(media.uris, parseOnly("").kind);
const text: string = fix("", { profiles: ["apple"], lossy: true }).text;
const bytes: Uint8Array = render(new Uint8Array());
const either: string | Uint8Array = write(media, { everyDate: true });
const findings: Finding[] = check(text, { profiles: "library", fixes: true }).findings;
const document = new Document(bytes);
console.log(document.apply(document.changeAttributes(1, { A: null, B: "b" }), findings[0]!.fixes[0]!.edits), either);
console.log(compare(document, "").changes[0]?.path);
try {
    parse("");
} catch (error) {
    if (error instanceof PlaylistError) console.log(error.reason.line);
}
// @ts-expect-error: there is no such kind
parse("", { kind: "video" });
// @ts-expect-error: a number is no text
check(7);
// @ts-expect-error: nothing is written into a playlist
media.version = 3;
