// Serves a folder of static files to this machine only.
//
//   node server.mjs FOLDER [PORT]      prints the address; any free port by default

import { readFile } from "node:fs/promises";
import { createServer } from "node:http";
import { extname, join, normalize } from "node:path";
import { pathToFileURL } from "node:url";

const types = {
  ".css": "text/css",
  ".html": "text/html; charset=utf-8",
  ".js": "text/javascript",
  ".svg": "image/svg+xml",
  ".txt": "text/plain; charset=utf-8",
};

async function answer(folder, request, response) {
  try {
    const { pathname } = new URL(request.url, "http://localhost");
    const path = normalize(decodeURIComponent(pathname)); // never above the root
    const file = path.endsWith("/") ? `${path}index.html` : path;
    const content = await readFile(join(folder, file));
    response.writeHead(200, { "Content-Type": types[extname(file)] ?? "application/octet-stream" });
    response.end(content);
  } catch {
    response.writeHead(404, { "Content-Type": "text/plain" });
    response.end("File not found.\n");
  }
}

/** Resolves to the address, and a function that stops the server. */
export function startServer(folder, port) {
  const server = createServer((request, response) => answer(folder, request, response));
  return new Promise((resolve, reject) => {
    server.once("error", reject);
    server.listen(port, "127.0.0.1", () => {
      const address = `http://127.0.0.1:${server.address().port}/`;
      const close = () => {
        server.close();
        server.closeAllConnections();
      };
      resolve({ address, close });
    });
  });
}

if (process.argv[1] && import.meta.url === pathToFileURL(process.argv[1]).href) {
  const [folder, port] = process.argv.slice(2);
  const { address } = await startServer(folder, Number(port ?? 0)).catch((error) => {
    console.error(`server: ${error.message}`);
    process.exit(1);
  });
  console.log(`The playground is at ${address} until you press Ctrl-C.`);
}
