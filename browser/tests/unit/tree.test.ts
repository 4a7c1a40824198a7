import assert from "node:assert/strict";
import { test } from "node:test";
import { Tree } from "../../app/model/tree";
import type * as Shape from "../../app/wire/shapes";

const file = (id: string): Shape.Node => ({ id, name: `${id}.swift`, kind: "file" });
const group = (id: string, ...children: Shape.Node[]): Shape.Node => ({ id, name: id, kind: "group", children });
const sample = () => Tree.of({ revision: 1, root: group("root", group("a", file("a1"), file("a2")), group("b", file("b1"))) });
const names = (tree: Tree, id: string) => tree.children(id).map((node) => node.id);
const changes = (changed: Shape.ChangedNode[], removed: string[] = []): Shape.TreeChanges => ({ revision: 2, since: 1, changed, removed });

test("children come in the project's order", () => {
  assert.deepEqual(names(sample(), "root"), ["a", "b"]);
  assert.deepEqual(names(sample(), "a"), ["a1", "a2"]);
});

test("the way to a node begins at the root", () => {
  assert.deepEqual(sample().way("a2").map((node) => node.id), ["root", "a", "a2"]);
  assert.deepEqual(sample().way("nowhere"), []);
});

test("no project is an empty tree", () => {
  assert.equal(Tree.of({ revision: 3 }).root, undefined);
});

test("a renamed node stays where it is", () => {
  const tree = sample().with(changes([{ id: "a1", name: "new.swift", kind: "file", parent: "a" }]));
  assert.equal(tree.node("a1")?.name, "new.swift");
  assert.deepEqual(names(tree, "a"), ["a1", "a2"]);
  assert.equal(tree.revision, 2);
});

test("a new node takes its place, or the last one", () => {
  const first = sample().with(changes([{ id: "a0", name: "a0", kind: "file", parent: "a", index: 0 }]));
  assert.deepEqual(names(first, "a"), ["a0", "a1", "a2"]);
  const last = sample().with(changes([{ id: "a3", name: "a3", kind: "file", parent: "a" }]));
  assert.deepEqual(names(last, "a"), ["a1", "a2", "a3"]);
});

test("a moved group takes what is in it along", () => {
  const tree = sample().with(changes([{ id: "b", name: "b", kind: "group", parent: "a", index: 1 }]));
  assert.deepEqual(names(tree, "root"), ["a"]);
  assert.deepEqual(names(tree, "a"), ["a1", "b", "a2"]);
  assert.deepEqual(names(tree, "b"), ["b1"]);
});

test("a removed node leaves its group, and the tree before stays as it was", () => {
  const before = sample();
  const after = before.with(changes([], ["a1"]));
  assert.deepEqual(names(after, "a"), ["a2"]);
  assert.equal(after.node("a1"), undefined);
  assert.deepEqual(names(before, "a"), ["a1", "a2"]);
});

test("a change below a group that is not there does nothing", () => {
  const tree = sample().with(changes([{ id: "x", name: "x", kind: "file", parent: "gone" }]));
  assert.deepEqual(names(tree, "root"), ["a", "b"]);
});
