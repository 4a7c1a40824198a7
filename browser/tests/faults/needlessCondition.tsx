// A fault for the lint to find: the condition is always true.
export function Name({ text }: { text: string }) {
  return <p>{text !== undefined ? text : ""}</p>;
}
