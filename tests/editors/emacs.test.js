"use strict";
// editors/README.md, followed in Emacs with eglot: its lines for the configuration, its files, and what it says of them.

const assert = require("node:assert/strict");
const { spawnSync } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const { after, test } = require("node:test");
const page = require("./page.js");

const folder = fs.realpathSync(fs.mkdtempSync(path.join(os.tmpdir(), "emacs-")));
after(() => fs.rmSync(folder, { recursive: true }));
page.write(folder, "init.el", "letter.stencilor", "letter.stencilor.context.json", "header.stencilor");

/** Opens the letter of the page, waits for its diagnostics, runs some Lisp, and returns its result. */
function run(lisp) {
    const script = path.join(folder, "script.el");
    fs.writeFileSync(
        script,
        `(require 'json)
         (defun wait-until (condition)
           (let ((end (+ (float-time) 10)))
             (while (not (or (funcall condition) (> (float-time) end)))
               (accept-process-output nil 0.05))))
         (defun line () (buffer-substring-no-properties (line-beginning-position) (line-end-position)))
         (defun messages () (mapcar #'flymake-diagnostic-text (flymake-diagnostics)))
         (find-file "letter.stencilor")
         (run-hooks 'post-command-hook) ; which eglot-ensure waits for
         (wait-until #'eglot-managed-p)
         (flymake-start)
         (wait-until #'messages)
         (goto-char (point-min))
         (let ((result (progn ${lisp})))
           (write-region (json-encode result) nil "result.json")
           (kill-emacs))`
    );
    const { stderr, stdout } = spawnSync(
        process.env.EMACS,
        ["--batch", "--funcall", "package-initialize", "--load", "init.el", "--load", script],
        { cwd: folder, env: page.environment(folder), timeout: 60000 }
    );
    const file = path.join(folder, "result.json");
    assert.ok(fs.existsSync(file), String(stderr) + stdout);
    const result = JSON.parse(fs.readFileSync(file, "utf8"));
    fs.rmSync(file);
    return result;
}

test("a fault is underlined", () => {
    const found = run(`
        (let ((fault (car (flymake-diagnostics))))
          (list (flymake-diagnostic-text fault)
                (buffer-substring-no-properties (flymake-diagnostic-beg fault) (flymake-diagnostic-end fault))))`);
    assert.match(found[0], /no string is named "item.nmae".*did you mean "item.name"\?/);
    assert.equal(found[1], "item.nmae");
});

test("a name is completed", () => {
    const found = run(`
        (search-forward "item.nmae")
        (delete-char -4)
        (eglot--signal-textDocument/didChange) ; which an idle timer does
        (let ((answer (eglot-completion-at-point)))
          (all-completions "" (nth 2 answer)))`);
    assert.deepEqual(found, ["item.name", "title"]);
});

test("an include is opened, and a variable leads to its loop", () => {
    const found = run(`
        (search-forward "item.nm")
        (backward-char 5)
        (xref-find-definitions "LSP identifier at point")
        (let ((variable (- (point) (line-beginning-position))))
          (goto-char (point-min))
          (search-forward "header.st")
          (xref-find-definitions "LSP identifier at point")
          (list variable (file-name-nondirectory buffer-file-name)))`);
    assert.deepEqual(found, [7, "header.stencilor"]);
});

test("a variable is renamed", () => {
    const found = run(`
        (search-forward "item.nm")
        (backward-char 5)
        (eglot-rename "tea")
        (line)`);
    assert.equal(found, "{% for tea in items %}- {{ tea.nmae }}");
});
