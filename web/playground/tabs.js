// Tabs with arrow-key navigation.

/** Calls `choose` with the chosen tab. */
export function makeTabs(list, choose) {
  list.addEventListener("click", ({ target }) => {
    const tab = target.closest("[role=tab]");
    if (tab) {
      choose(tab);
    }
  });
  list.addEventListener("keydown", (event) => {
    const tabs = [...list.querySelectorAll("[role=tab]")];
    const at = tabs.indexOf(document.activeElement);
    const to = { ArrowLeft: at - 1, ArrowRight: at + 1, Home: 0, End: tabs.length - 1 }[event.key];
    if (at >= 0 && to !== undefined) {
      event.preventDefault();
      const index = (to + tabs.length) % tabs.length;
      choose(tabs[index]);
      list.querySelectorAll("[role=tab]")[index].focus();
    }
  });
}

/** Shows a tab for each file. */
export function fillTabs(list, files, active, isFaulty) {
  const tabs = [...list.children];
  files.forEach(({ path }, index) => {
    const tab = tabs[index] ?? list.appendChild(document.createElement("button"));
    tab.type = "button";
    tab.role = "tab";
    tab.id = `file-${index}`;
    tab.dataset.index = index;
    tab.tabIndex = index === active ? 0 : -1;
    tab.textContent = path;
    tab.title = index === 0 ? "The template that is rendered" : "Can be included";
    tab.className = isFaulty(path) ? "faulty" : "";
    tab.setAttribute("aria-selected", index === active);
    tab.setAttribute("aria-controls", "template");
  });
  tabs.slice(files.length).forEach((tab) => tab.remove());
}
