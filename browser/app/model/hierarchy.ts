// Types by what they inherit from: each below its superclass, or the first type that it conforms to.
import type { Shape } from "../wire/wire";

export type TypeItem = Shape.Types["items"][number];
export interface TypeRow {
  item: TypeItem;
  depth: number;
}

export function hierarchy(items: readonly TypeItem[]): TypeRow[] {
  const names = new Set(items.map((item) => item.name));
  const below = new Map<string, TypeItem[]>();
  const roots: TypeItem[] = [];
  for (const item of items) {
    const parent = item.inherits?.find((name) => names.has(name) && name !== item.name);
    if (parent === undefined) roots.push(item);
    else below.set(parent, [...(below.get(parent) ?? []), item]);
  }

  const rows: TypeRow[] = [];
  const seen = new Set<TypeItem>();
  const add = (item: TypeItem, depth: number) => {
    if (seen.has(item)) return;
    seen.add(item);
    rows.push({ item, depth });
    // Several declarations of a name (a class and its extensions) share what is below: the first has it.
    const children = below.get(item.name) ?? [];
    below.delete(item.name);
    for (const child of children) add(child, depth + 1);
  };
  for (const root of roots) add(root, 0);
  for (const item of items) add(item, 0); // what inherits in a circle
  return rows;
}
