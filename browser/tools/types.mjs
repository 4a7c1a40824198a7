// Makes the types of what goes over the wire from the one description of it.
import { mkdir, readFile, writeFile } from "node:fs/promises";
import { compile } from "json-schema-to-typescript";

const schema = JSON.parse(
  await readFile(new URL("../../protocol/shapes.schema.json", import.meta.url), "utf8"),
);
const made = new URL("../app/wire/shapes.ts", import.meta.url);

const text = await compile(schema, "Shapes", {
  bannerComment: "// Made from protocol/shapes.schema.json by `npm run types`: change that.",
  additionalProperties: false,
  unreachableDefinitions: true,
  format: false,
});
await mkdir(new URL(".", made), { recursive: true });
await writeFile(made, text);
