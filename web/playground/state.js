// The state of the page, kept locally and in links.

const place = "stencilor-playground";

async function transform(bytes, stream) {
  return new Uint8Array(await new Response(new Blob([bytes]).stream().pipeThrough(stream)).arrayBuffer());
}

/** The state as the fragment of a link. */
export async function toFragment(state) {
  const bytes = new TextEncoder().encode(JSON.stringify(state));
  const packed = await transform(bytes, new CompressionStream("deflate"));
  const binary = Array.from(packed, (byte) => String.fromCharCode(byte)).join("");
  return btoa(binary).replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "");
}

/** The state in a fragment; null if there is none. */
export async function fromFragment(fragment) {
  if (!fragment) {
    return null;
  }
  try {
    const binary = atob(fragment.replaceAll("-", "+").replaceAll("_", "/"));
    const packed = Uint8Array.from(binary, (character) => character.charCodeAt(0));
    const bytes = await transform(packed, new DecompressionStream("deflate"));
    return checked(JSON.parse(new TextDecoder().decode(bytes)));
  } catch {
    return null;
  }
}

export function save(state) {
  try {
    localStorage.setItem(place, JSON.stringify(state));
  } catch {
    // If there is no local storage, or it is full, the state is not kept.
  }
}

export function restore() {
  try {
    return checked(JSON.parse(localStorage.getItem(place)));
  } catch {
    return null;
  }
}

/** Returns a valid state made from untrusted data, or null. */
function checked(state) {
  const isText = (value) => typeof value === "string";
  const isFile = (file) => Array.isArray(file) && file.length === 2 && file.every(isText);
  if (!Array.isArray(state?.files) || state.files.length === 0 || !state.files.every(isFile) || !isText(state.values)) {
    return null;
  }
  return {
    files: state.files,
    values: state.values,
    positions: state.positions === true,
    escape: ["html", "json"].includes(state.escape) ? state.escape : "none",
    view: ["page", "names", "tree"].includes(state.view) ? state.view : "text",
    title: isText(state.title) ? state.title : "",
  };
}
