// C declarations in a syntax tree.

export { declarationsOf } from "./cfamily.mjs";
export const grammar = "tree-sitter-c.wasm";
export const extensions = ["c"];
