// The worker that renders; it is replaced if it does not answer.

const patience = 5000;

/** Renders the newest job; older ones that are still waiting are dropped. */
export class Renderer {
  #worker;
  #isBusy = false;
  #isReady = false;
  #waiting = null;
  #id = 0;
  #timer;

  constructor(show) {
    this.show = show;
    this.#start();
  }

  render(job) {
    this.#waiting = { id: ++this.#id, job };
    this.#next();
  }

  #start() {
    this.#isBusy = true; // until it is loaded
    this.#isReady = false;
    this.#worker = new Worker("worker.js", { type: "module" });
    this.#worker.addEventListener("message", ({ data }) => this.#receive(data));
    this.#worker.addEventListener("error", ({ message }) => this.#fail(message));
  }

  #receive(data) {
    clearTimeout(this.#timer);
    if (data.failure) {
      this.#fail(data.failure);
      return;
    }
    this.#isBusy = false;
    if (data.ready) {
      this.#isReady = true;
    } else {
      this.show(data);
    }
    this.#next();
  }

  #next() {
    if (this.#isBusy || !this.#waiting) {
      return;
    }
    this.#isBusy = true;
    this.#timer = setTimeout(() => this.#replace(`It took more than ${patience / 1000} seconds.`), patience);
    this.#worker.postMessage(this.#waiting);
    this.#waiting = null;
  }

  /** A worker that cannot even be loaded is not replaced. */
  #fail(reason) {
    if (this.#isReady) {
      this.#replace(reason);
    } else {
      this.#showFailure(`The engine cannot be loaded. ${reason ?? ""}`, "error");
    }
  }

  #replace(reason) {
    this.#worker.terminate();
    this.#showFailure(reason, "stopped");
    this.#start();
  }

  #showFailure(limit, kind) {
    this.show({ id: this.#id, status: kind, text: "", limit, findings: [], names: [], tree: [] });
  }
}
