// A fault for the lint to find: the condition is always true.
export function lengthOf(text: string): number {
  return text !== undefined ? text.length : 0;
}
