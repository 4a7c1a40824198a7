// The server that the page's tests play with says nothing that Navrel would not say.
import assert from "node:assert/strict";
import { test } from "node:test";
import { faultsOf } from "../schema";
import { kTicket, MockServer } from "../mock/server";
import { idOf } from "../mock/sample";

const kAnswers: [string, string][] = [
  ["state", "state"],
  ["tree", "tree"],
  [`files/${idOf("Tidewatch/Views/TideView.m")}/outline`, "outline"],
  [`files/${idOf("Tidewatch/Support/main.m")}/outline`, "outline"],
  [`files/${idOf("Tidewatch/Views/TideView.m")}/source?from=3&to=9`, "source"],
  ["search?q=tide", "search"],
  ["types", "types"],
  ["notes", "notes"],
  ["filetypes", "fileTypes"],
  ["changes", "changes"],
];

test("each answer has the shape of its name", async () => {
  const server = new MockServer("build/app/packed");
  await server.start();
  try {
    const headers = { "X-Navrel": "1" };
    const refused = await fetch(`${server.url}api/state`);
    assert.equal(refused.status, 401);
    assert.deepEqual(faultsOf("error", await refused.json()), []);
    const paired = await fetch(`${server.url}api/pair`, { method: "POST", headers, body: JSON.stringify({ ticket: kTicket, label: "test" }) });
    const cookie = paired.headers.get("set-cookie")!.split(";")[0]!;
    for (const [path, shape] of kAnswers) {
      const answer = await fetch(`${server.url}api/${path}`, { headers: { cookie } });
      assert.equal(answer.status, 200, path);
      assert.deepEqual(faultsOf(shape, await answer.json()), [], path);
    }
    const open = await fetch(`${server.url}api/open`, { method: "POST", headers: { ...headers, cookie }, body: JSON.stringify({ file: idOf("x"), line: 2 }) });
    assert.deepEqual(faultsOf("open", await open.json()), []);
  } finally {
    await server.stop();
  }
});

test("a wrong shape is found", () => {
  assert.notDeepEqual(faultsOf("source", { id: "nope", from: 0 }), []);
  assert.notDeepEqual(faultsOf("open", { request: 1, path: "/etc/passwd" }), []);
});
