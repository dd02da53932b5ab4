// The engine, and how strings, values and functions are passed to and from it.

import { compressed } from "./wasm.js";
import { ValueWriter } from "./values.js";

export const Status = { Ok: 0, Rejected: 2, WrongKind: 13 };

const encoder = new TextEncoder();
const decoder = new TextDecoder("utf-8", { ignoreBOM: true });

async function decompress(base64) {
  const bytes = Uint8Array.from(atob(base64), (character) => character.charCodeAt(0));
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("deflate"));
  const pieces = [];
  for (const reader = stream.getReader(); ; ) {
    const { done, value } = await reader.read();
    if (done) {
      return new Blob(pieces).arrayBuffer(); // in Node.js, a Response would take longer than everything else
    }
    pieces.push(value);
  }
}

export class Engine {
  /** The functions of the engine. */
  wasm;
  #calls = [];
  #writer = new ValueWriter();
  #results; // where the engine stores up to two pointers, and then eight numbers
  #view; // of all memory

  static async load() {
    const engine = new Engine();
    const { instance } = await WebAssembly.instantiate(await decompress(compressed), engine.#imports());
    engine.wasm = instance.exports;
    engine.wasm._initialize();
    engine.#results = engine.allocate(8 + 8 * 8);
    return engine;
  }

  /** Throws if there is no memory; elsewhere, the engine traps. */
  allocate(size) {
    const address = this.wasm.malloc(size);
    if (address === 0) {
      throw new RangeError("out of memory");
    }
    return address;
  }

  bytes(address, size) {
    return new Uint8Array(this.wasm.memory.buffer, address >>> 0, size);
  }

  readText(address, size) {
    return decoder.decode(this.bytes(address, size));
  }

  /** Calls a function that stores the size of its text through its last argument; returns the
   * text. */
  textOf(name, ...handle) {
    const address = this.wasm[name](...handle, this.#results);
    return this.readText(address, this.#readPointer(this.#results));
  }

  #readPointer(address) {
    return this.#memory().getUint32(address, true);
  }

  /** The memory moves when it grows. */
  #memory() {
    const { buffer } = this.wasm.memory;
    if (this.#view?.buffer !== buffer) {
      this.#view = new DataView(buffer);
    }
    return this.#view;
  }

  /** The text, the number of messages, and the usage of a result. */
  readResult(result) {
    const place = this.#results + 8;
    this.wasm.stencilor_web_result(result, place);
    const memory = this.#memory();
    const number = (index) => memory.getFloat64(place + index * 8, true);
    return {
      text: this.readText(number(0), number(1)),
      messageCount: number(2),
      usage: {
        steps: number(3),
        outputBytes: number(4),
        templateBytes: number(5),
        includeDepth: number(6),
        messages: number(7),
      },
    };
  }

  /** Calls `use` with the address and the size of a string in UTF-8. */
  withText(text, use) {
    return this.#withBytes(encoder.encode(text), use);
  }

  #withBytes(bytes, use) {
    const address = this.allocate(bytes.length || 1);
    try {
      this.bytes(address, bytes.length).set(bytes);
      return use(address, bytes.length);
    } finally {
      this.wasm.free(address);
    }
  }

  /** Calls a function that returns a status and stores a handle. Returns both. */
  make(call) {
    const status = call(this.#results);
    return { status, handle: this.#readPointer(this.#results) };
  }

  /** Returns the handle; throws for any status but success. */
  makeOrThrow(call) {
    const { status, handle } = this.make(call);
    this.check(status);
    return handle;
  }

  check(status) {
    if (status !== Status.Ok) {
      const address = this.wasm.stencilor_status_text(status);
      const bytes = this.bytes(address, 128);
      throw new Error(decoder.decode(bytes.subarray(0, bytes.indexOf(0))));
    }
  }

  /** Returns the handle of a context made from values. */
  makeContext(values, positions) {
    const writer = this.#writer ?? new ValueWriter();
    this.#writer = null; // getters of the values may call this again
    try {
      return this.#withBytes(writer.write(values), (address, size) => {
        const { status, handle } = this.make((context) =>
          this.wasm.stencilor_web_context(address, size, positions ? 1 : 0, context, context + 4),
        );
        return status === Status.Ok ? handle : this.#throwError(status);
      });
    } finally {
      this.#writer = writer;
    }
  }

  /** Returns the handle of a context made from JSON text. */
  makeContextOfJson(json, positions) {
    return this.withText(json, (address, size) => {
      const { status, handle } = this.make((context) =>
        this.wasm.stencilor_context_parse_json(address, size, positions ? 1 : 0, 0, 0, context, context + 4),
      );
      return status === Status.Ok ? handle : this.#throwError(status);
    });
  }

  /** Throws the error that was stored instead of a handle. */
  #throwError(status) {
    if (status === Status.WrongKind) {
      throw new TypeError("the values are not an object");
    }
    const error = this.#readPointer(this.#results + 4);
    if (error === 0) {
      this.check(status);
    }
    const text = this.textOf("stencilor_error_text", error);
    const line = this.wasm.stencilor_error_line(error);
    const column = this.wasm.stencilor_error_column(error);
    this.wasm.stencilor_error_free(error);
    throw line === 0 ? new TypeError(text) : Object.assign(new SyntaxError(text), { line, column });
  }

  /** Calls `use` with a number by which callbacks of the engine find `functions`. Rethrows what
   * they throw once `use` has returned. */
  withFunctions(functions, use) {
    const call = { functions, failure: null };
    this.#calls.push(call);
    let result;
    try {
      result = use(this.#calls.length - 1);
    } catch (error) {
      throw call.failure === null ? error : call.failure.thrown;
    } finally {
      this.#calls.pop();
    }
    if (call.failure !== null) {
      throw call.failure.thrown;
    }
    return result;
  }

  /** Runs a callback. Exceptions must not pass through the engine: a failure ends the call. */
  #run(number, callback) {
    const call = this.#calls[number];
    try {
      return callback(call.functions);
    } catch (thrown) {
      call.failure ??= { thrown };
      return 1;
    }
  }

  #imports() {
    return {
      host: {
        find: (number, path, size, request) =>
          this.#run(number, ({ find }) => find(this.readText(path, size), request)),
        escape: (number, text, size, output) =>
          this.#run(number, ({ escape }) =>
            this.withText(String(escape(this.readText(text, size))), (address, length) =>
              this.wasm.stencilor_output_append(output, address, length),
            ),
          ),
        poll: (number) => this.#run(number, ({ keepGoing }) => (keepGoing() ? 0 : 1)),
      },
      env: { emscripten_notify_memory_growth: () => {} },
      wasi_snapshot_preview1: {
        clock_time_get: () => 1, // for a log that is never written
        proc_exit: (code) => {
          throw new Error(`the engine ended with ${code}`);
        },
      },
    };
  }
}
