/** What holds memory of the WebAssembly module: until it is freed, or collected. */
export class Handle {
    #memory;
    #address;
    #free;
    #isOfBytes;

    /** Takes the handle at an address, what frees it, and whether it was made of bytes. */
    constructor(memory, address, free, isOfBytes = false) {
        this.#memory = memory;
        this.#address = memory.own(this, address, free);
        this.#free = free;
        this.#isOfBytes = isOfBytes;
    }

    /** Whether it was made of bytes, so that its texts are wanted as such. */
    static isOfBytes(handle) {
        return handle.#isOfBytes;
    }

    /** The address; throws when it was freed. For the library's own use. */
    static address(handle) {
        if (handle.#address === 0) throw new TypeError("this was freed");
        return handle.#address;
    }

    free() {
        if (this.#address === 0) return;
        this.#memory.disown(this);
        this.#free(this.#address);
        this.#address = 0;
    }

    static {
        // Where the engine knows `using`.
        if (Symbol.dispose) this.prototype[Symbol.dispose] = this.prototype.free;
    }
}
