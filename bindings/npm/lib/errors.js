/** A playlist that the library rejects. */
export class PlaylistError extends Error {
    constructor(reason) {
        super(reason.line === 0 ? reason.message : `line ${reason.line}: ${reason.message}`);
        this.name = "PlaylistError";
        this.reason = reason;
    }
}

/** What this text or model cannot be given. */
export class RefusedError extends Error {
    constructor(message) {
        super(message);
        this.name = "RefusedError";
    }
}
