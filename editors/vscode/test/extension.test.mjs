// The bundled extension in a stand-in for the editor, against a socket that is listened on as Navrel does.

import assert from "node:assert/strict";
import { mkdtempSync, rmSync } from "node:fs";
import { Module, createRequire } from "node:module";
import net from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { afterEach, beforeEach, test } from "node:test";
import { standIn } from "./stand-in.mjs";

const require = createRequire(import.meta.url);
const bundle = join(import.meta.dirname ?? new URL(".", import.meta.url).pathname, "../out/extension.js");

/** An answer that does not come by then never comes. */
const timeout = 60_000;

let folder, server, connections, windows;

/** A connection of an editor, line by line. */
class Conversation {
  #lines = [];
  #waiting = [];
  constructor(socket) {
    this.socket = socket;
    let rest = "";
    socket.setEncoding("utf8");
    socket.on("error", () => {});
    socket.on("data", (text) => {
      const parts = (rest + text).split("\n");
      rest = parts.pop();
      for (const part of parts) {
        const message = JSON.parse(part);
        const waiting = this.#waiting.shift();
        waiting ? waiting(message) : this.#lines.push(message);
      }
    });
  }
  next() {
    const line = this.#lines.shift();
    return line ? Promise.resolve(line) : new Promise((resolve) => this.#waiting.push(resolve));
  }
  async until(accepts) {
    for (;;) {
      const message = await this.next();
      if (accepts(message)) {
        return message;
      }
    }
  }
  say(message) {
    this.socket.write(`${JSON.stringify(message)}\n`);
  }
}

function startWindow(documents, folders) {
  const vscode = standIn(documents, folders);
  const load = Module._load;
  Module._load = (request, ...rest) => (request === "vscode" ? vscode : load(request, ...rest));
  delete require.cache[bundle];
  const extension = require(bundle);
  Module._load = load;
  const context = { subscriptions: [] };
  extension.activate(context);
  windows.push(context);
  return vscode;
}

beforeEach(async () => {
  folder = mkdtempSync(join(tmpdir(), "navrel-"));
  process.env.XDG_RUNTIME_DIR = folder;
  windows = [];
  const arrived = [], wanted = [];
  connections = {
    next: () => arrived.length > 0 ? Promise.resolve(arrived.shift()) : new Promise((resolve) => wanted.push(resolve)),
  };
  server = net.createServer((socket) => {
    const conversation = new Conversation(socket);
    const waiting = wanted.shift();
    waiting ? waiting(conversation) : arrived.push(conversation);
  });
  await new Promise((resolve) => server.listen(join(folder, "nl.kelvane.Navrel.editor"), resolve));
});

afterEach(() => {
  for (const context of windows) {
    context.subscriptions.forEach((part) => part.dispose());
  }
  server.close();
  rmSync(folder, { recursive: true });
});

const documents = { "/p/a.swift": ["struct A {", "    let b = 1", "}"], "/p/b.swift": ["// b", "class B {}"] };

test("it says who it is and where the user goes", async () => {
  const vscode = startWindow(documents, ["/p"]);
  const navrel = await connections.next();
  const hello = await navrel.next();
  assert.deepEqual({ ...hello, pid: 0 }, { hello: "Stand-in", version: 1, pid: 0, folders: ["/p"] });
  assert.deepEqual(await navrel.next(), { active: null });

  await vscode.window.showTextDocument(await vscode.workspace.openTextDocument({ fsPath: "/p/a.swift" }));
  vscode.moveTo(1, 4);
  const place = await navrel.until((message) => message.line === 2);
  assert.deepEqual(place, { active: "/p/a.swift", line: 2, column: 5, modified: false });
});

test("it selects the line that it is asked for, and answers", async () => {
  const vscode = startWindow(documents, ["/p"]);
  const navrel = await connections.next();
  navrel.say({ open: "/p/b.swift", line: 2, id: 7 });
  await navrel.until((message) => message.opened === 7);
  const { selection, document } = vscode.window.activeTextEditor;
  assert.equal(document.uri.fsPath, "/p/b.swift");
  assert.deepEqual([selection.anchor.line, selection.anchor.character], [1, 0]);
  assert.deepEqual([selection.active.line, selection.active.character], [1, 10]);
});

test("the way back puts the cursor at its column", async () => {
  const vscode = startWindow(documents, ["/p"]);
  const navrel = await connections.next();
  navrel.say({ open: "/p/a.swift", line: 2, column: 9, id: 1 });
  await navrel.until((message) => message.opened === 1);
  const { selection } = vscode.window.activeTextEditor;
  assert.deepEqual(selection.anchor, selection.active);
  assert.deepEqual([selection.active.line, selection.active.character], [1, 8]);
});

test("between two files it does not say that there is none", async () => {
  const vscode = startWindow(documents, ["/p"]);
  const navrel = await connections.next();
  await navrel.until((message) => message.active === null);
  await vscode.window.showTextDocument(await vscode.workspace.openTextDocument({ fsPath: "/p/a.swift" }));
  await navrel.until((message) => message.active === "/p/a.swift");
  vscode.leaveFile();
  await vscode.window.showTextDocument(await vscode.workspace.openTextDocument({ fsPath: "/p/b.swift" }));
  const next = await navrel.until((message) => "active" in message);
  assert.equal(next.active, "/p/b.swift");
  vscode.leaveFile();
  await navrel.until((message) => message.active === null);
});

test("columns count characters, whatever UTF-16 takes for them", async () => {
  const vscode = startWindow({ "/p/c.swift": ["let 🌊 = wave()"] }, ["/p"]);
  const navrel = await connections.next();
  navrel.say({ open: "/p/c.swift", line: 1, column: 9, id: 1 });
  await navrel.until((message) => message.opened === 1);
  assert.equal(vscode.window.activeTextEditor.selection.active.character, 9);
  vscode.moveTo(0, 9);
  await navrel.until((message) => message.column === 9);
  navrel.say({ open: "/p/c.swift", line: 1, column: 99, id: 2 });
  await navrel.until((message) => message.opened === 2);
  assert.equal(vscode.window.activeTextEditor.selection.active.character, 15);
});

test("it goes back in the editor's own list", async () => {
  const vscode = startWindow(documents, ["/p"]);
  const navrel = await connections.next();
  navrel.say({ back: true, id: 6 });
  await navrel.until((message) => message.opened === 6);
  assert.deepEqual(vscode.commands.executed, ["workbench.action.navigateBack"]);
});

test("a step back waits for the jump before it", { timeout }, async () => {
  let load;
  const slow = { "/p/b.swift": new Promise((resolve) => (load = resolve)) };
  const vscode = startWindow({ ...documents, slow }, ["/p"]);
  const navrel = await connections.next();
  navrel.say({ open: "/p/a.swift", line: 1, id: 1 });
  await navrel.until((message) => message.opened === 1);
  navrel.say({ open: "/p/b.swift", line: 1, id: 2 });
  navrel.say({ back: true, id: 3 });
  navrel.say({ open: "/p/none.swift", line: 1, id: 4 });
  setImmediate(load);
  const ends = [];
  await navrel.until((message) => (message.opened ?? message.refused) > 1 && ends.push(message) === 3);
  assert.deepEqual(ends.map((message) => message.opened ?? -message.refused), [2, 3, -4]);
  assert.equal(vscode.commands.during, "/p/b.swift");
});

test("a file that never comes is refused, and the next request has its turn", { timeout }, async () => {
  startWindow({ ...documents, slow: { "/p/b.swift": new Promise(() => {}) } }, ["/p"]);
  const navrel = await connections.next();
  navrel.say({ open: "/p/b.swift", line: 1, id: 1 });
  navrel.say({ back: true, id: 2 });
  const refused = await navrel.until((message) => message.refused === 1);
  assert.match(refused.reason, /not finished/);
  await navrel.until((message) => message.opened === 2);
});

test("a file that is not there is refused with the editor's reason", async () => {
  startWindow(documents, ["/p"]);
  const navrel = await connections.next();
  navrel.say({ open: "/p/none.swift", line: 1, id: 3 });
  const refused = await navrel.until((message) => message.refused === 3);
  assert.match(refused.reason, /it is not there/);
});

test("garbage is passed over", async () => {
  startWindow(documents, ["/p"]);
  const navrel = await connections.next();
  navrel.socket.write('garbage\n[]\nnull\n{"open":3,"id":1}\n{"open":"/p/a.swift"}\n{"back":1,"id":2}\n{"op');
  navrel.socket.write('en":"/p/a.swift","id":4}\n');
  await navrel.until((message) => message.opened === 4);
});

test("two windows are two editors, and the one that is focused speaks again", async () => {
  const first = startWindow(documents, ["/p"]);
  const one = await connections.next();
  const second = startWindow({ "/q/c.swift": ["let c = 1"] }, ["/q"]);
  const two = await connections.next();
  await second.window.showTextDocument(await second.workspace.openTextDocument({ fsPath: "/q/c.swift" }));
  await two.until((message) => message.active === "/q/c.swift");
  await first.window.showTextDocument(await first.workspace.openTextDocument({ fsPath: "/p/a.swift" }));
  await one.until((message) => message.active === "/p/a.swift");
  second.focus();
  await two.until((message) => message.active === "/q/c.swift");
});
