// What is packed into the program: its weight, and that the page asks for nothing that is not there.
import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { gunzipSync } from "node:zlib";
import { kAssets } from "../browsers/screens";

const kHeaviest = 40_000;
const names = readdirSync(kAssets);
const packed = (name: string) => readFileSync(join(kAssets, name));
const text = (name: string) => gunzipSync(packed(name)).toString("utf8");
const page = text("index.html");

test("the page is at most 40 kB in three requests", () => {
  const needed = names.filter((name) => /\.(html|js|css)$/.test(name));
  assert.equal(needed.length, 3, String(needed));
  const weight = needed.reduce((sum, name) => sum + packed(name).length, 0);
  assert.ok(weight <= kHeaviest, `${weight} bytes`);
});

test("scripts and styles are files of their own, with their hash in their name", () => {
  assert.doesNotMatch(page, /<style|\s(?:style|on[a-z]+)=|="javascript:/i);
  for (const [, attributes, body] of page.matchAll(/<script([^>]*)>([^]*?)<\/script>/g)) {
    assert.match(attributes!, /src="\/main-[A-Z0-9]{8}\.js"/);
    assert.equal(body, "");
  }
  assert.match(page, /<link rel="stylesheet" href="\/app-[A-Z0-9]{8}\.css">/);
});

test("all that the page names is there, and nothing of it is elsewhere", () => {
  const named = [...page.matchAll(/(?:src|href)="([^"]*)"/g)].map(([, path]) => path!);
  assert.ok(named.length >= 5, String(named));
  assert.deepEqual(named.filter((path) => !names.includes(path.replace(/^\//, ""))), []);
});

interface Manifest {
  display: string;
  start_url: string;
  scope: string;
  icons: { src: string; sizes: string; type: string }[];
}

/** Of a picture as PNG: its header says it. */
const sizeOf = (png: Buffer) => `${png.readUInt32BE(16)}x${png.readUInt32BE(20)}`;

test("the home screen gets an app of its own, with icons", () => {
  const manifest = JSON.parse(text("manifest.webmanifest")) as Manifest;
  assert.equal(manifest.display, "standalone");
  assert.equal(manifest.scope, "/");
  assert.equal(manifest.start_url, "/");
  for (const { src, sizes, type } of manifest.icons) {
    const name = src.slice(1);
    if (type === "image/png") assert.equal(sizeOf(packed(name)), sizes);
    else assert.match(text(name), /<svg/);
  }
  assert.deepEqual(manifest.icons.map(({ type }) => type).sort(), ["image/png", "image/svg+xml"]);
});
