/** A list whose objects are made when they are asked for, each time anew. */
export class List {
    #length;
    #make;

    constructor(length, make) {
        this.#length = length;
        this.#make = make;
    }

    get length() {
        return this.#length;
    }

    at(index) {
        const place = Math.trunc(index) || 0;
        const from = place < 0 ? place + this.#length : place;
        return from < 0 || from >= this.#length ? undefined : this.#make(from);
    }

    *[Symbol.iterator]() {
        for (let index = 0; index < this.#length; ++index) yield this.#make(index);
    }

    map(change) {
        return Array.from({ length: this.#length }, (_, index) => change(this.#make(index), index));
    }
}
