// A browser and a server for tests. STENCILOR_MODULES is the folder of the npm modules.

import { createRequire } from "node:module";
import { join } from "node:path";

import { startServer } from "../server.mjs";

export const require = createRequire(join(process.env.STENCILOR_MODULES, "tests.js"));

/** The distribution's Chromium, without network access of its own. */
export function openBrowser() {
  const { chromium } = require("playwright-core");
  return chromium.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    args: [
      "--no-sandbox",
      "--disable-gpu",
      "--disable-quic",
      "--no-first-run",
      "--disable-background-networking",
      "--disable-component-update",
      "--disable-sync",
    ],
  });
}

export async function serve(folder) {
  const server = await startServer(folder, 0);
  return { address: server.address, close: () => server.close() };
}
