// Makes the web app's files: index.html, one script, one style sheet, the manifest and the icons, and the
// list of them for Qt's resource compiler. Texts are compressed here, once, and not at each request.
// usage: node bundle.mjs --out FOLDER [--modules FOLDER] [--esbuild PROGRAM]
import { execFileSync } from "node:child_process";
import { copyFileSync, mkdirSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { basename, extname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { parseArgs } from "node:util";
import { gzipSync } from "node:zlib";

const browser = fileURLToPath(new URL("..", import.meta.url));
const drawings = join(browser, "../resources/icons/hicolor");
const { values: options } = parseArgs({
  options: {
    out: { type: "string" },
    modules: { type: "string", default: join(browser, "node_modules") },
    esbuild: { type: "string", default: "esbuild" },
  },
});
if (!options.out) throw new Error("--out FOLDER is missing");
const out = resolve(options.out);
const plain = join(out, "plain");
const packed = join(out, "packed");

// What every browser of the last four years reads.
const target = "es2021,safari15,chrome100,firefox102";

function bundle() {
  const listing = join(out, "bundle.json");
  execFileSync(
    options.esbuild,
    [
      join(browser, "app/main.tsx"),
      join(browser, "app/styles/app.css"),
      "--bundle",
      "--minify",
      "--format=esm",
      "--jsx=automatic",
      "--jsx-import-source=preact",
      `--target=${target}`,
      "--entry-names=[name]-[hash]",
      `--outdir=${plain}`,
      `--metafile=${listing}`,
      "--legal-comments=none",
      "--log-level=warning",
    ],
    { stdio: ["ignore", "inherit", "inherit"], env: { ...process.env, NODE_PATH: options.modules } },
  );
  const made = Object.keys(JSON.parse(readFileSync(listing, "utf8")).outputs).map((path) => basename(path));
  return {
    script: made.find((name) => name.endsWith(".js")),
    style: made.find((name) => name.endsWith(".css")),
  };
}

function page({ script, style }) {
  const text = readFileSync(join(browser, "app/index.html"), "utf8");
  return text.replace("{{script}}", script).replace("{{style}}", style);
}

/** What is a picture already gains nothing from compression. */
function pack(name) {
  const bytes = readFileSync(join(plain, name));
  writeFileSync(join(packed, name), extname(name) === ".png" ? bytes : gzipSync(bytes, { level: 9 }));
}

rmSync(out, { recursive: true, force: true });
mkdirSync(plain, { recursive: true });
mkdirSync(packed, { recursive: true });

writeFileSync(join(plain, "index.html"), page(bundle()));
copyFileSync(join(browser, "app/manifest.webmanifest"), join(plain, "manifest.webmanifest"));
copyFileSync(join(drawings, "scalable/apps/nl.kelvane.Navrel.svg"), join(plain, "icon.svg"));
copyFileSync(join(drawings, "256x256/apps/nl.kelvane.Navrel.png"), join(plain, "icon.png"));

const names = readdirSync(plain).sort();
names.forEach(pack);
writeFileSync(
  join(out, "browser.qrc"),
  ['<RCC><qresource prefix="/browser">']
    .concat(names.map((name) => `<file alias="${name}" compression-algorithm="none">packed/${name}</file>`))
    .concat("</qresource></RCC>", "")
    .join("\n"),
);
