// Drives the built program with a client that others wrote: client.mjs PROGRAM CLIENT_FOLDER
// (paths as the shell knows them). Makes a home with three notes, talks, and prints "N passed, N failed".
import assert from "node:assert/strict";
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";

const [program, clientFolder] = process.argv.slice(2);
const require = createRequire(resolve(clientFolder, "package.json"));
const { Client } = require("@modelcontextprotocol/sdk/client/index.js");
const { StdioClientTransport } = require("@modelcontextprotocol/sdk/client/stdio.js");
const { CallToolResultSchema, EmptyResultSchema } = require("@modelcontextprotocol/sdk/types.js");

const home = mkdtempSync(join(tmpdir(), "vesk-client-"));
const folder = join(home, "Library/Application Support/Vesk/Notes");
const identity = number => `0000000${number}-AAAA-4BBB-8CCC-DDDDDDDDDDDD`;

function writeNote(number, texts) {
    writeFileSync(join(folder, `${identity(number)}.json`), JSON.stringify({
        created: 790000000.5 + number, duration: 3600, exchanges: [], id: identity(number),
        segments: texts.map((text, i) => ({ source: i % 2 ? "them" : "me", start: 5 * i, text })),
        summary: `Summary of ${number}`, thoughts: "", title: `Note ${number}`,
    }));
}

mkdirSync(folder, { recursive: true });
writeNote(1, ["hello there", "Страшно хубаво"]);
writeNote(2, Array(1000).fill("x".repeat(79)));
writeNote(3, []);

const transport = new StdioClientTransport({ command: resolve(program), args: ["--mcp"], cwd: "/", env: { HOME: home }, stderr: "pipe" });
const client = new Client({ name: "test", version: "1" });
const text = result => {
    assert.equal(result.content.length, 1);
    return result.content[0].text;
};
const call = async (name, args) => {
    const result = CallToolResultSchema.parse(await client.callTool({ name, arguments: args }));
    assert.ok(!result.isError, JSON.stringify(result));
    return text(result);
};

const cases = {
    async connects() {
        await client.connect(transport);
        assert.equal(client.getServerVersion().name, "vesk");
        assert.equal(client.getServerCapabilities().tools.listChanged, false);
        assert.match(client.getInstructions(), /"Me" is the owner/);
    },
    async answersAPing() {
        EmptyResultSchema.parse(await client.ping());
    },
    async listsItsTools() {
        const { tools } = await client.listTools();
        assert.deepEqual(tools.map(tool => tool.name), ["list_notes", "search_notes", "get_note"]);
        assert.ok(tools.every(tool => tool.annotations.readOnlyHint && tool.annotations.openWorldHint === false));
        assert.deepEqual(tools[2].inputSchema.required, ["id"]);
    },
    async listsNotes() {
        const list = JSON.parse(await call("list_notes", { limit: 2 }));
        assert.equal(list.total, 3);
        assert.deepEqual(list.notes.map(note => note.id), [identity(3), identity(2)]);
        assert.equal(list.notes[0].summary, "Summary of 3");
    },
    async findsNotes() {
        const found = JSON.parse(await call("search_notes", { query: "СТРАШНО" }));
        assert.deepEqual([found.total, found.notes[0].matches], [1, 1]);
        assert.deepEqual(found.notes[0].snippets, [{ in: "transcript", text: "[0:05] Them: Страшно хубаво" }]);
    },
    async readsANoteByParts() {
        const first = await call("get_note", { id: identity(2).toLowerCase() });
        assert.match(first, /^# Note 2\nDate: 2026-01-13T/);
        assert.match(first, /\(Transcript part 1 of 3\. Call get_note with part 2 to read on\.\)$/);
        assert.match(await call("get_note", { id: identity(2), part: 3 }), /^# Note 2, transcript part 3 of 3\n\n\[/);
    },
    async saysNoInAResult() {
        const result = await client.callTool({ name: "get_note", arguments: { id: "../config" } });
        assert.equal(result.isError, true);
        assert.equal(text(result), 'No note with id "../config". Find the id with list_notes or search_notes.');
    },
    async refusesAnUnknownTool() {
        await assert.rejects(client.callTool({ name: "delete_note", arguments: {} }), { code: -32602 });
    },
    async refusesAnUnknownMethod() {
        await assert.rejects(client.request({ method: "resources/list" }, EmptyResultSchema), { code: -32601 });
    },
    async endsWhenItsInputDoes() {
        const { pid } = transport;
        await client.close();
        assert.throws(() => process.kill(pid, 0), { code: "ESRCH" });
    },
};

let passed = 0;
let failed = 0;
for (const [name, run] of Object.entries(cases)) {
    try {
        await run();
        passed += 1;
    } catch (error) {
        failed += 1;
        console.log(`${name}: ${error.stack}`);
    }
}
rmSync(home, { recursive: true });
console.log(`${passed} passed, ${failed} failed`);
process.exit(failed ? 1 : 0);
