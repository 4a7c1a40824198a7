// A server that answers as Navrel does, from the sample, and can be brought into any state: for the tests of
// the page by itself, and for working on it (`npm run mock`).
import { createServer, type IncomingMessage, type Server, type ServerResponse } from "node:http";
import { existsSync, readFileSync } from "node:fs";
import type { AddressInfo, Socket } from "node:net";
import { extname, join } from "node:path";
import type * as Shape from "../../app/wire/shapes";
import { kDeadlineMilliseconds, within } from "../drivers/driver";
import { sampleChanges, sampleHits, sampleNotes, sampleOutlines, sampleState, sampleTree, sampleTypes } from "./sample";

export const kTicket = "AAAAAAAAAAAAAAAAAAAAAA";
export const kCode = "123456";
const kPolicy =
  "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src 'self'; manifest-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'none'";
const kTypes: Record<string, string> = {
  ".html": "text/html; charset=utf-8",
  ".js": "text/javascript; charset=utf-8",
  ".css": "text/css; charset=utf-8",
  ".svg": "image/svg+xml",
  ".png": "image/png",
  ".webmanifest": "application/manifest+json",
};

interface Body {
  file?: string;
  line?: number;
  ticket?: string;
  code?: string;
  items?: Shape.FileTypes["items"];
}

export class MockServer {
  state = sampleState;
  root: Shape.Node | undefined = sampleTree;
  outlines = new Map(sampleOutlines);
  /** The lines of files, in place of the sample's. */
  sources = new Map<string, readonly string[]>();
  notes = sampleNotes;
  types = sampleTypes;
  changes = sampleChanges;
  hits = sampleHits();
  fileTypes: Shape.FileTypes = { items: ["c", "h", "m", "swift"].map((extension) => ({ extension, allowed: extension !== "c" })) };
  active: Shape.Events["active"] = { file: sampleState.editor.active ?? null };
  outcome: Omit<Shape.Events["opened"], "request"> = { outcome: "opened", editor: "Neovim" };
  /** What was asked of the editor. */
  opened: Shape.OpenRequest[] = [];
  backs = 0;
  streams = 0;

  private revision = 1;
  private requests = 0;
  private cookies = new Set<string>();
  private readonly open = new Set<ServerResponse>();
  private readonly sockets = new Set<Socket>();
  private readonly server: Server;
  private port = 0;

  constructor(private readonly assets: string) {
    this.server = createServer((request, response) => void this.answer(request, response));
    this.server.on("connection", (socket) => {
      this.sockets.add(socket);
      socket.on("close", () => this.sockets.delete(socket));
    });
  }

  /** On a port of its own choice, and again on the same one after `stop`. */
  async start(): Promise<void> {
    await new Promise<void>((done) => this.server.listen(this.port, "127.0.0.1", done));
    this.port = (this.server.address() as AddressInfo).port;
  }

  /** As if the computer slept: the port is closed, and all connections break. */
  async stop(): Promise<void> {
    const closed = new Promise((done) => this.server.close(done));
    for (const socket of this.sockets) socket.destroy();
    await within(kDeadlineMilliseconds, "Closing the server", closed);
  }

  get url(): string {
    return `http://127.0.0.1:${this.port}/`;
  }

  forgetDevices(): void {
    this.cookies.clear();
    for (const stream of this.open) stream.end();
  }

  emit<Name extends keyof Shape.Events>(name: Name, data: Shape.Events[Name]): void {
    for (const stream of this.open) write(stream, name, data);
  }

  /** Tells all pages that files, or the tree, are others now. */
  change(files: string[], tree = false): void {
    this.revision += 1;
    this.emit("revision", { revision: this.revision, files, tree });
  }

  private async answer(request: IncomingMessage, response: ServerResponse): Promise<void> {
    const url = new URL(request.url ?? "/", this.url);
    response.setHeader("Content-Security-Policy", kPolicy);
    if (!url.pathname.startsWith("/api/")) return this.asset(url.pathname, response);
    const body = request.method === "POST" ? await bodyOf(request) : {};
    if (request.method === "POST" && request.headers["x-navrel"] !== "1") return fail(response, 403, "Refused.");
    if (url.pathname === "/api/pair") return this.pair(body, response);
    const cookie = /navrel=(\w+)/.exec(request.headers.cookie ?? "")?.[1];
    if (!cookie || !this.cookies.has(cookie)) return fail(response, 401, "This device is not paired.");
    if (url.pathname === "/api/events") return this.events(response);
    const value = request.method === "POST" ? this.posted(url.pathname, body) : this.got(url);
    if (value === undefined) return fail(response, 404, "There is no such file.", "It may have left the project.");
    send(response, request.method === "POST" ? 202 : 200, value);
  }

  private asset(path: string, response: ServerResponse): void {
    const file = join(this.assets, path === "/" ? "index.html" : path.slice(1));
    if (!existsSync(file)) return void response.writeHead(404).end();
    response.setHeader("Content-Type", kTypes[extname(file)] ?? "application/octet-stream");
    if (extname(file) !== ".png") response.setHeader("Content-Encoding", "gzip");
    response.end(readFileSync(file));
  }

  private pair(body: Body, response: ServerResponse): void {
    if (body.ticket !== kTicket && body.code !== kCode) {
      return fail(response, 403, body.ticket ? "This link has been used, or is too old." : "That is not the code.", "Look at the pairing window on the computer.");
    }
    const cookie = `c${this.cookies.size}${Date.now()}`;
    this.cookies.add(cookie);
    response.setHeader("Set-Cookie", `navrel=${cookie}; HttpOnly; SameSite=Strict; Path=/`);
    response.writeHead(204).end();
  }

  private events(response: ServerResponse): void {
    this.streams += 1;
    // As Navrel, without chunks: WebKitGTK may hold the end of one back until the next arrives.
    response.removeHeader("Transfer-Encoding");
    response.writeHead(200, { "Content-Type": "text/event-stream", "Cache-Control": "no-store", Connection: "close" });
    response.on("close", () => this.open.delete(response));
    this.open.add(response);
    write(response, "hello", { revision: this.revision, active: this.active.file });
  }

  private got(url: URL): unknown {
    const [, id, part] = /^\/api\/files\/([0-9a-f]{16})\/(outline|source)$/.exec(url.pathname) ?? [];
    if (id && part === "outline") return this.outlines.get(id) ?? this.plainOutline(id);
    if (id) return this.source(id, Number(url.searchParams.get("from")), Number(url.searchParams.get("to")));
    const revision = this.revision;
    switch (url.pathname) {
      case "/api/state":
        return this.state;
      case "/api/tree":
        return this.root ? { revision, root: this.root } : { revision };
      case "/api/search":
        return this.search(url.searchParams.get("q") ?? "", url.searchParams.get("kinds") ?? "");
      case "/api/types":
        return { revision, items: this.types };
      case "/api/notes":
        return { revision, items: this.notes };
      case "/api/filetypes":
        return this.fileTypes;
      case "/api/changes":
        return this.changes;
      default:
        return undefined;
    }
  }

  private posted(path: string, body: Body): Shape.Open | undefined {
    const request = ++this.requests;
    if (path === "/api/filetypes") {
      const changed = new Map((body.items ?? []).map(({ extension, allowed }) => [extension, allowed]));
      this.fileTypes = { items: this.fileTypes.items.map((item) => ({ ...item, allowed: changed.get(item.extension) ?? item.allowed })) };
      setImmediate(() => {
        this.emit("revision", { revision: this.revision, files: [], tree: false });
        this.emit("opened", { request, outcome: "opened" });
      });
      return { request };
    }
    if (path === "/api/back") this.backs += 1;
    else if (path === "/api/open" && body.file) this.opened.push({ file: body.file, ...(body.line ? { line: body.line } : {}) });
    else return undefined;
    setImmediate(() => this.emit("opened", { request, ...this.outcome }));
    return { request };
  }

  private fileOf(id: string, node = this.root): Shape.Node | undefined {
    if (!node || node.id === id) return node;
    for (const child of node.children ?? []) {
      const found = this.fileOf(id, child);
      if (found) return found;
    }
    return undefined;
  }

  private plainOutline(id: string): Shape.Outline | undefined {
    const node = this.fileOf(id);
    if (node?.kind !== "file") return undefined;
    const { name, path = "", language } = node;
    return { id, name, path, revision: this.revision, counterparts: [], items: [], headings: [], notes: [], lines: 9, ...(language ? { language } : {}) };
  }

  private source(id: string, from: number, to: number): Shape.Source | undefined {
    const node = this.fileOf(id);
    if (!node?.path) return undefined;
    const lines = this.sources.get(id) ?? readFileSync(join("../samples/Tidewatch", node.path), "utf8").split("\n").slice(0, -1);
    const end = Math.min(to, lines.length);
    return { id, from, to: end, total: lines.length, text: lines.slice(from - 1, end).join("\n") };
  }

  private search(query: string, kinds: string): Shape.Search {
    const wanted = kinds === "" ? undefined : kinds.split(",");
    const items = this.hits.flatMap((hit) => {
      const at = hit.name.toLowerCase().indexOf(query.toLowerCase());
      if (at < 0 || (wanted && !wanted.includes(hit.kind))) return [];
      return [{ ...hit, positions: Array.from(query, (_, index) => at + index) }];
    });
    return { query, revision: this.revision, truncated: items.length > 60, items: items.slice(0, 60) };
  }
}

function write(stream: ServerResponse, name: string, data: unknown): void {
  stream.write(`event: ${name}\ndata: ${JSON.stringify(data)}\n\n`);
}

function send(response: ServerResponse, status: number, value: unknown): void {
  response.writeHead(status, { "Content-Type": "application/json", "Cache-Control": "no-store" }).end(JSON.stringify(value));
}

function fail(response: ServerResponse, status: number, error: string, hint?: string): void {
  send(response, status, hint ? { error, hint } : { error });
}

async function bodyOf(request: IncomingMessage): Promise<Body> {
  let text = "";
  for await (const piece of request) text += String(piece);
  return JSON.parse(text || "{}") as Body;
}
