"use strict";
// The files in editors/README.md, by name.

const fs = require("node:fs");
const path = require("node:path");

const page = fs.readFileSync(path.join(__dirname, "../../editors/README.md"), "utf8");

exports.files = Object.fromEntries(
    [...page.matchAll(/<!-- file: (\S+) -->\n```\w+\n(.*?)```\n/gs)].map(([, name, text]) => [name, text])
);

/** Writes some of them into a folder. */
exports.write = (folder, ...names) => {
    for (const name of names) {
        fs.writeFileSync(path.join(folder, name), exports.files[name]);
    }
};

/** The environment of an editor that finds the program on the path, and no files of a user. */
exports.environment = (folder) => ({
    ...process.env,
    HOME: folder,
    PATH: path.dirname(process.env.STENCILOR) + path.delimiter + process.env.PATH,
});
