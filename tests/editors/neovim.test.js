"use strict";
// Follows editors/README.md in Neovim: its configuration lines, its files, and the results it
// describes.

const assert = require("node:assert/strict");
const { spawnSync } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const { after, test } = require("node:test");
const page = require("./page.js");

const folder = fs.realpathSync(fs.mkdtempSync(path.join(os.tmpdir(), "neovim-")));
after(() => fs.rmSync(folder, { recursive: true }));

page.write(folder, "init.lua", "letter.stencilor", "letter.stencilor.context.json", "header.stencilor");

/** Opens the letter of the page, waits for its diagnostics, runs some Lua, and returns its result,
 * a table. */
function run(lua) {
    const script = path.join(folder, "script.lua");
    fs.writeFileSync(
        script,
        `local ok, result = pcall(function()
            vim.cmd("edit letter.stencilor")
            assert(vim.wait(10000, function() return #vim.diagnostic.get(0) > 0 end), "no diagnostics")
            local function go(line, column) vim.api.nvim_win_set_cursor(0, { line, column }) end
            local function lines() return vim.api.nvim_buf_get_lines(0, 0, -1, true) end
            ${lua}
        end)
        vim.fn.writefile({ vim.json.encode(ok and result or { error = tostring(result) }) }, "result.json")
        vim.cmd("qall!")`
    );
    const { stderr } = spawnSync(process.env.NVIM, ["--headless", "--clean", "-n", "-u", "init.lua", "-S", script], {
        cwd: folder,
        env: page.environment(folder),
        timeout: 60000,
    });
    const file = path.join(folder, "result.json");
    assert.ok(fs.existsSync(file), String(stderr));
    const result = JSON.parse(fs.readFileSync(file, "utf8"));
    fs.rmSync(file);
    assert.equal(result.error, undefined);
    return result;
}

test("a fault is underlined", () => {
    const found = run(`
        local underlined = {}
        for _, each in pairs(vim.diagnostic.get_namespaces()) do
            local space = each.user_data.underline_ns
            for _, mark in ipairs(space and vim.api.nvim_buf_get_extmarks(0, space, 0, -1, { details = true }) or {}) do
                table.insert(underlined, { mark[2], mark[3], mark[4].end_col })
            end
        end
        return { message = vim.diagnostic.get(0)[1].message, underlined = underlined }`);
    assert.match(found.message, /no string is named "item.nmae".*did you mean "item.name"\?/);
    assert.deepEqual(found.underlined, [[1, 28, 37]]);
});

test("a typed fault is underlined until it is corrected", () => {
    const found = run(`
        local function messages(count)
            vim.wait(10000, function() return #vim.diagnostic.get(0) == count end)
            return vim.tbl_map(function(each) return each.message end, vim.diagnostic.get(0))
        end
        vim.api.nvim_buf_set_text(0, 1, 28, 1, 37, { "item.name" })
        local none = messages(0)
        vim.api.nvim_buf_set_text(0, 0, 0, 0, 0, { "{{ title }\u{20AC}" })
        return { none = #none, one = messages(1)[1] }`);
    assert.equal(found.none, 0);
    assert.match(found.one, /expected "\}\}" after the name/);
});

test("a name is completed", () => {
    const found = run(`
        vim.api.nvim_buf_set_text(0, 1, 33, 1, 37, { "" })
        go(2, 33)
        local items = vim.lsp.buf_request_sync(0, "textDocument/completion", vim.lsp.util.make_position_params(), 5000)
        local labels = {}
        for _, answer in pairs(items) do
            for _, item in ipairs(answer.result.items) do table.insert(labels, item.label) end
        end
        return { labels = labels, omnifunc = vim.bo.omnifunc }`);
    assert.deepEqual(found.labels, ["item.name", "title"]);
    assert.equal(found.omnifunc, "v:lua.vim.lsp.omnifunc");
});

test("an include is opened, and a variable leads to its loop", () => {
    const found = run(`
        go(2, 30)
        vim.fn.feedkeys("gd", "x")
        vim.wait(5000, function() return vim.api.nvim_win_get_cursor(0)[2] == 7 end)
        local variable = vim.api.nvim_win_get_cursor(0)
        go(1, 15)
        vim.fn.feedkeys("gd", "x")
        vim.wait(5000, function() return vim.fn.expand("%:t") == "header.stencilor" end)
        return { variable = variable, opened = vim.fn.expand("%:t") }`);
    assert.deepEqual(found, { variable: [2, 7], opened: "header.stencilor" });
});

test("a name leads to its line in the context", () => {
    const found = run(`
        vim.cmd("write")
        vim.cmd("edit header.stencilor")
        vim.wait(500)
        go(1, 4)
        vim.fn.feedkeys("gd", "x")
        vim.wait(5000, function() return vim.fn.expand("%:e") == "json" end)
        return { opened = vim.fn.expand("%:t"), cursor = vim.api.nvim_win_get_cursor(0) }`);
    assert.deepEqual(found, { opened: "letter.stencilor.context.json", cursor: [1, 2] });
});

test("a variable is renamed", () => {
    const found = run(`
        go(2, 30)
        vim.lsp.buf.rename("tea")
        vim.wait(5000, function() return lines()[2]:find("tea", 1, true) ~= nil end)
        return { line = lines()[2] }`);
    assert.equal(found.line, "{% for tea in items %}- {{ tea.nmae }}");
});

test("a misspelled name is corrected", () => {
    const found = run(`
        go(2, 30)
        local actions
        vim.ui.select = function(items, _, choose) actions = #items choose(items[1], 1) end
        vim.lsp.buf.code_action()
        vim.wait(5000, function() return lines()[2]:find("name", 1, true) ~= nil end)
        return { actions = actions, line = lines()[2] }`);
    assert.deepEqual(found, { actions: 1, line: "{% for item in items %}- {{ item.name }}" });
});
