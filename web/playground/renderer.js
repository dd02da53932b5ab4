// The worker that renders, replaced where it does not answer.

const patience = 5000;

/** Renders the newest job; those that it overtook are left out. */
export class Renderer {
  #worker;
  #busy = false;
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
    this.#busy = true; // until it is loaded
    this.#worker = new Worker("worker.js", { type: "module" });
    this.#worker.addEventListener("message", ({ data }) => {
      clearTimeout(this.#timer);
      this.#busy = false;
      if (!data.ready) {
        this.show(data);
      }
      this.#next();
    });
  }

  #next() {
    if (this.#busy || !this.#waiting) {
      return;
    }
    this.#busy = true;
    this.#timer = setTimeout(() => this.#giveUp(), patience);
    this.#worker.postMessage(this.#waiting);
    this.#waiting = null;
  }

  #giveUp() {
    this.#worker.terminate();
    const limit = `It takes more than ${patience / 1000} seconds.`;
    this.show({ id: this.#id, status: "failed", text: "", limit, findings: [], names: [], tree: [] });
    this.#start();
  }
}
