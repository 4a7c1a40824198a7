// A real Navrel on a copy of the sample project, in a profile of its own.
import { type ChildProcess, spawn } from "node:child_process";
import { cpSync, existsSync, mkdirSync, mkdtempSync, openSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { request as ask } from "node:http";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { Hopeless, until } from "../drivers/driver";
import { freePort } from "../drivers/ports";
import { end } from "../drivers/processes";
import type * as Shape from "../../app/wire/shapes";

const kBuilds = ["test", "dev", "debug", "release", "bench"];

/** The program that was built last; NAVREL_PROGRAM names another. */
export function navrelProgram(): string | undefined {
  const named = process.env["NAVREL_PROGRAM"];
  if (named) return named;
  const programs = kBuilds.map((build) => resolve(`../build/${build}/bin/navrel`)).filter((path) => existsSync(path));
  return programs.sort((a, b) => statSync(b).mtimeMs - statSync(a).mtimeMs)[0];
}

export class Navrel {
  private process: ChildProcess | undefined;

  private constructor(
    private readonly program: string,
    private readonly root: string,
    readonly port: number,
  ) {}

  static async prepare(program: string): Promise<Navrel> {
    const root = mkdtempSync(join(tmpdir(), "navrel-browser-"));
    for (const folder of ["config/nl.kelvane", "data", "run", "home"]) mkdirSync(join(root, folder), { recursive: true, mode: 0o700 });
    cpSync("../samples/Tidewatch", join(root, "Tidewatch"), { recursive: true });
    writeFileSync(join(root, "config/nl.kelvane/Navrel.conf"), `[General]\nautomaticProjectSelection=false\nlastKnownProject="${root}/Tidewatch/Tidewatch.xcodeproj"\n`);
    return new Navrel(program, root, await freePort());
  }

  get environment(): NodeJS.ProcessEnv {
    const { DBUS_SESSION_BUS_ADDRESS: _, DISPLAY: __, ...rest } = process.env;
    return {
      ...rest,
      HOME: join(this.root, "home"),
      XDG_CONFIG_HOME: join(this.root, "config"),
      XDG_DATA_HOME: join(this.root, "data"),
      XDG_RUNTIME_DIR: this.runtimeFolder,
      QT_QPA_PLATFORM: "offscreen",
      NAVREL_EDITOR: "neovim",
      NAVREL_BROWSER: `machine:${this.port}`,
    };
  }

  get runtimeFolder(): string {
    return join(this.root, "run");
  }

  get url(): string {
    return `http://127.0.0.1:${this.port}/`;
  }

  get log(): string {
    return readFileSync(join(this.root, "log"), "utf8");
  }

  path(file: string): string {
    return join(this.root, "Tidewatch", file);
  }

  async start(): Promise<void> {
    const log = openSync(join(this.root, "log"), "a");
    const process = spawn(this.program, [], { env: this.environment, stdio: ["ignore", log, log] });
    this.process = process;
    let problem = "";
    process.once("error", (error) => (problem = error.message));
    process.once("exit", (code, signal) => (problem = `It ended with ${signal ?? code}`));
    await until("Navrel", async () => {
      if (problem !== "") throw new Hopeless(`Navrel does not run. ${problem}`);
      return (await this.asOwner<Shape.State>("GET", "/api/state")).project.state === "loaded";
    }).catch((error: unknown) => {
      throw new Error(`${(error as Error).message}\n${this.log}`);
    });
  }

  async stop(): Promise<void> {
    const { process } = this;
    this.process = undefined;
    if (process) await end(process);
  }

  async remove(): Promise<void> {
    await this.stop();
    rmSync(this.root, { recursive: true, force: true });
  }

  private get socketPath(): string {
    return join(this.runtimeFolder, "nl.kelvane.Navrel.sock");
  }

  /** Over the owner's socket. */
  asOwner<Answer>(method: string, path: string, body?: unknown): Promise<Answer> {
    const { socketPath } = this;
    const headers = { Host: "localhost", "X-Navrel": "1", ...(body === undefined ? {} : { "Content-Type": "application/json" }) };
    return new Promise((done, fail) => {
      const request = ask({ socketPath, method, path, headers }, (response) => {
        let text = "";
        response.on("data", (piece) => (text += String(piece)));
        response.on("end", () => {
          if (response.statusCode! < 300) done((text === "" ? undefined : JSON.parse(text)) as Answer);
          else fail(new Error(`${method} ${path}: ${response.statusCode} ${text}`));
        });
      });
      request.on("error", fail);
      request.end(body === undefined ? undefined : JSON.stringify(body));
    });
  }

  /** The owner's stream of events, as text, until the function that comes back is called. */
  watch(onText: (text: string) => void): () => void {
    const request = ask({ socketPath: this.socketPath, path: "/api/events", headers: { Host: "localhost" } }, (response) => response.on("data", (piece) => onText(String(piece))));
    request.on("error", () => undefined);
    request.end();
    return () => void request.destroy();
  }

  offer(): Promise<Shape.Pairing> {
    return this.asOwner("POST", "/api/pairing");
  }

  async link(): Promise<string> {
    return (await this.offer()).url;
  }

  async devices(): Promise<Shape.Devices["items"]> {
    return (await this.asOwner<Shape.Devices>("GET", "/api/devices")).items;
  }
}
