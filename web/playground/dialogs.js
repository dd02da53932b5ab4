// Asks for the path of a template.

const element = (id) => document.getElementById(id);

function faultOf(path, taken) {
  if (!/^[A-Za-z_][\w./]*$/.test(path)) {
    return "A path starts with a letter, followed by letters, digits, “_”, “.” and “/”.";
  }
  return taken.includes(path) ? "A template with this path already exists." : "";
}

/** Resolves to a path that is valid in include tags, or to null. */
export function askForPath(question, path, taken) {
  const dialog = element("ask");
  const input = element("ask-path");
  element("ask-title").textContent = question;
  element("ask-fault").textContent = "";
  input.value = path;
  dialog.returnValue = "";
  dialog.showModal();
  input.select();
  return new Promise((resolve) => {
    const form = dialog.querySelector("form");
    form.onsubmit = (event) => {
      const fault = event.submitter?.value === "" ? "" : faultOf(input.value.trim(), taken);
      element("ask-fault").textContent = fault;
      if (fault) {
        event.preventDefault();
      }
    };
    dialog.onclose = () => resolve(dialog.returnValue === "ok" ? input.value.trim() : null);
  });
}
