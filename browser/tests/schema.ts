// The one description of what goes over the wire, as tests ask it.
import { readFileSync } from "node:fs";
import Ajv from "ajv";

interface Schema {
  definitions: Record<string, object> & Record<"symbolKind" | "noteKind" | "nodeKind", { enum: string[] }>;
}
export const schema = JSON.parse(readFileSync("../protocol/shapes.schema.json", "utf8")) as Schema;

const checker = new Ajv({ allErrors: true, strict: false });
checker.addSchema(schema, "shapes");

/** What is wrong with a value that should have a shape; empty where nothing is. */
export function faultsOf(shape: string, value: unknown): string[] {
  const isRight = checker.validate(`shapes#/definitions/${shape}`, value);
  return isRight ? [] : (checker.errors ?? []).map(({ instancePath, message }) => `${shape}${instancePath} ${message}`);
}
