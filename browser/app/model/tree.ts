// The project's tree as the page keeps it: by identifier, with the way up.
import type { Shape } from "../wire/wire";

export interface TreeNode extends Omit<Shape.Node, "children"> {
  parent?: string;
  children: readonly string[];
}

export class Tree {
  private constructor(
    readonly revision: number,
    readonly rootID: string | undefined,
    private readonly nodes: ReadonlyMap<string, TreeNode>,
  ) {}

  static readonly empty = new Tree(0, undefined, new Map());

  static of({ revision, root }: Shape.Tree): Tree {
    const nodes = new Map<string, TreeNode>();
    const pending: { node: Shape.Node; parent?: string }[] = root ? [{ node: root }] : [];
    for (let next = pending.pop(); next; next = pending.pop()) {
      const { children = [], ...own } = next.node;
      const parent = next.parent === undefined ? {} : { parent: next.parent };
      nodes.set(own.id, { ...own, ...parent, children: children.map((child) => child.id) });
      for (const child of children) pending.push({ node: child, parent: own.id });
    }
    return new Tree(revision, root?.id, nodes);
  }

  node(id: string | undefined): TreeNode | undefined {
    return id === undefined ? undefined : this.nodes.get(id);
  }

  get root(): TreeNode | undefined {
    return this.node(this.rootID);
  }

  children(id: string): TreeNode[] {
    return (this.node(id)?.children ?? []).map((child) => this.nodes.get(child)).filter((node) => node !== undefined);
  }

  /** From the root down to the node itself; nothing for a node that is not there. */
  way(id: string): TreeNode[] {
    const way: TreeNode[] = [];
    for (let node = this.node(id); node && way.length < this.nodes.size; node = this.node(node.parent)) way.unshift(node);
    return way;
  }

  /** The tree after some changes. Only for changes since this tree's revision. */
  with({ revision, changed, removed }: Shape.TreeChanges): Tree {
    const nodes = new Map(this.nodes);
    let rootID = this.rootID;
    for (const id of removed) {
      leave(nodes, id);
      nodes.delete(id);
    }
    for (const { parent, index, ...own } of changed) {
      const before = nodes.get(own.id);
      const place = parent === undefined ? {} : { parent };
      const moves = !before || before.parent !== parent || index !== undefined;
      if (moves) leave(nodes, own.id);
      nodes.set(own.id, { ...own, ...place, children: before?.children ?? [] });
      if (parent === undefined) rootID = own.id;
      else if (moves) enter(nodes, own.id, parent, index);
    }
    return new Tree(revision, rootID, nodes);
  }
}

function leave(nodes: Map<string, TreeNode>, id: string): void {
  const parent = nodes.get(nodes.get(id)?.parent ?? "");
  if (parent) nodes.set(parent.id, { ...parent, children: parent.children.filter((child) => child !== id) });
}

/** Without a place, at the end: what the project's editor does with a new file. */
function enter(nodes: Map<string, TreeNode>, id: string, parentID: string, index?: number): void {
  const parent = nodes.get(parentID);
  if (!parent) return;
  const children = [...parent.children];
  children.splice(index ?? children.length, 0, id);
  nodes.set(parentID, { ...parent, children });
}
