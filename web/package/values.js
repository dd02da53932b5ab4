// JavaScript values as bytes that the engine reads in one call.

const Tag = { Null: 0, False: 1, True: 2, Text: 3, RawText: 4, List: 5, Dictionary: 6, End: 7 };

// The depth to which the engine lets lists and dictionaries nest.
const deepest = 512;

const encoder = new TextEncoder();

/** A string that renders never escape. */
export class Raw {
  constructor(text) {
    this.text = String(text);
  }
}

/** Writes one value. */
export class ValueWriter {
  #bytes = new Uint8Array(1024);
  #size = 0;
  #key = "";

  /** Returns the bytes of a value, valid until the next call. Getters and iterators of the value
   * run here. */
  write(value) {
    this.#size = 0;
    this.#key = "";
    this.#writeValue(value, 0);
    return this.#bytes.subarray(0, this.#size);
  }

  #writeValue(value, depth) {
    switch (typeof value) {
      case "string":
        this.#writeTag(Tag.Text);
        return this.#writeText(value);
      case "number":
        if (!Number.isFinite(value)) {
          this.#refuse(`${value}`);
        }
      // falls through: JavaScript formats numbers as the engine does
      case "bigint":
        this.#writeTag(Tag.Text);
        return this.#writeText(String(value));
      case "boolean":
        return this.#writeTag(value ? Tag.True : Tag.False);
      case "undefined":
        return this.#writeTag(Tag.Null);
      case "object":
        return value === null ? this.#writeTag(Tag.Null) : this.#writeObject(value, depth);
      default:
        return this.#refuse(`a ${typeof value}`);
    }
  }

  #writeObject(value, depth) {
    if (depth === deepest) {
      throw new RangeError(`values nest deeper than ${deepest} levels, or contain themselves`);
    }
    if (Array.isArray(value)) {
      return this.#writeList(value, depth);
    }
    if (value instanceof Raw) {
      this.#writeTag(Tag.RawText);
      return this.#writeText(value.text);
    }
    if (value instanceof Map) {
      return this.#writeMap(value, depth);
    }
    if (typeof value.toJSON === "function") {
      return this.#writeValue(value.toJSON(), depth + 1);
    }
    if (value instanceof String || value instanceof Number || value instanceof Boolean) {
      return this.#writeValue(value.valueOf(), depth);
    }
    return value[Symbol.iterator] ? this.#writeList(value, depth) : this.#writeMembers(value, depth);
  }

  #writeList(items, depth) {
    this.#writeTag(Tag.List);
    for (const item of items) {
      this.#writeValue(item, depth + 1);
    }
    this.#writeTag(Tag.End);
  }

  #writeMembers(object, depth) {
    this.#writeTag(Tag.Dictionary);
    for (const key of Object.keys(object)) {
      this.#writeMember(key, object[key], depth);
    }
    this.#writeTag(Tag.End);
  }

  #writeMap(map, depth) {
    this.#writeTag(Tag.Dictionary);
    for (const [key, value] of map) {
      if (typeof key !== "string") {
        throw new TypeError("a key of a Map is not a string");
      }
      this.#writeMember(key, value, depth);
    }
    this.#writeTag(Tag.End);
  }

  #writeMember(key, value, depth) {
    this.#writeTag(Tag.Text); // any tag but the end
    this.#writeText(key);
    this.#key = key;
    this.#writeValue(value, depth + 1);
  }

  #writeTag(tag) {
    this.#reserve(1);
    this.#bytes[this.#size++] = tag;
  }

  /** Short strings are mostly ASCII, and copying them here is faster than a call. */
  #writeText(text) {
    const length = text.length;
    if (length >= 64) {
      return this.#writeEncoded(text);
    }
    this.#reserve(length + 1);
    const bytes = this.#bytes;
    let at = this.#size;
    bytes[at++] = length;
    for (let index = 0; index < length; ++index) {
      const unit = text.charCodeAt(index);
      if (unit >= 0x80) {
        return this.#writeEncoded(text);
      }
      bytes[at++] = unit;
    }
    this.#size = at;
  }

  /** The size always takes five bytes, because it is only known afterwards. */
  #writeEncoded(text) {
    this.#reserve(text.length * 3 + 5);
    const { written } = encoder.encodeInto(text, this.#bytes.subarray(this.#size + 5));
    let rest = written;
    for (let count = 0; count < 4; ++count) {
      this.#bytes[this.#size++] = (rest & 0x7f) | 0x80;
      rest >>>= 7;
    }
    this.#bytes[this.#size++] = rest;
    this.#size += written;
  }

  #reserve(count) {
    const needed = this.#size + count;
    if (needed > this.#bytes.length) {
      const larger = new Uint8Array(Math.max(needed, this.#bytes.length * 2));
      larger.set(this.#bytes.subarray(0, this.#size));
      this.#bytes = larger;
    }
  }

  #refuse(what) {
    throw new TypeError(`${what} is not a value${this.#key === "" ? "" : ` (key "${this.#key}")`}`);
  }
}
