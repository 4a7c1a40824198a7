// What the editor tells Navrel, and does for it.

import * as vscode from "vscode";
import { Connection } from "./connection";
import { Turns } from "./turns";
import { type Active, characterAt, columnAt, type Open, type Request } from "./wire";

/** The cursor is told of at most ten times a second. */
const pauseMilliseconds = 100;

function socketPath(): string | undefined {
  const folder = process.env["XDG_RUNTIME_DIR"];
  return folder === undefined || folder === "" ? undefined : `${folder}/nl.kelvane.Navrel.editor`;
}

function folders(): string[] {
  return (vscode.workspace.workspaceFolders ?? [])
    .filter((folder) => folder.uri.scheme === "file")
    .map((folder) => folder.uri.fsPath);
}

function place(): Active {
  const editor = vscode.window.activeTextEditor;
  if (editor === undefined || editor.document.uri.scheme !== "file") {
    return { active: null };
  }
  const { line, character } = editor.selection.active;
  return {
    active: editor.document.uri.fsPath,
    line: line + 1,
    column: columnAt(editor.document.lineAt(line).text, character),
    modified: editor.document.isDirty,
  };
}

/** Shows a file; an unsaved one keeps its changes, since the editor never closes a document for it. */
async function show(request: Open): Promise<void> {
  const document = await vscode.workspace.openTextDocument(vscode.Uri.file(request.open));
  const editor = await vscode.window.showTextDocument(document, { preview: false });
  if (request.line === undefined) {
    return;
  }
  const line = Math.min(Math.max(request.line - 1, 0), document.lineCount - 1);
  const { text, range } = document.lineAt(line);
  const start = new vscode.Position(line, characterAt(text, request.column ?? 1));
  const end = request.column === undefined ? range.end : start;
  editor.selection = new vscode.Selection(start, end);
  editor.revealRange(editor.selection, vscode.TextEditorRevealType.InCenterIfOutsideViewport);
}

async function serve(request: Request): Promise<void> {
  if ("back" in request) {
    await vscode.commands.executeCommand("workbench.action.navigateBack");
  } else {
    await show(request);
  }
}

/** Tells where the user is: what was told before is not told again, and not too often. */
class Teller {
  private last = "";
  private pause: NodeJS.Timeout | undefined;
  private isDue = false;
  private isBetweenFiles = false;

  constructor(private readonly tell: (place: Active) => void) {}

  moved(): void {
    if (this.pause !== undefined) {
      this.isDue = true;
      return;
    }
    const now = place();
    const text = JSON.stringify(now);
    if (text === this.last) {
      return;
    }
    // On the way from one file to another there is none for a moment.
    this.isBetweenFiles = now.active === null && !this.isBetweenFiles;
    if (this.isBetweenFiles) {
      this.isDue = true;
    } else {
      this.last = text;
      this.tell(now);
    }
    this.pause = setTimeout(() => {
      this.pause = undefined;
      if (this.isDue) {
        this.isDue = false;
        this.moved();
      }
    }, pauseMilliseconds);
  }

  /** Tells it in any case: another window spoke since, or another program listens. */
  again(): void {
    this.last = "";
    this.moved();
  }

  dispose(): void {
    clearTimeout(this.pause);
  }
}

export function activate(context: vscode.ExtensionContext): void {
  const path = socketPath();
  if (path === undefined) {
    return;
  }
  const hello = () => {
    connection.send({ hello: vscode.env.appName, version: 1, pid: process.pid, folders: folders() });
  };
  const turns = new Turns();
  const teller = new Teller((where) => connection.send(where));
  const connection = new Connection(path, {
    connected: () => {
      hello();
      if (vscode.window.state.focused) {
        teller.again();
      }
    },
    requested: (request) => {
      turns.take(() => serve(request)).then(
        () => connection.send({ opened: request.id }),
        (error: unknown) =>
          connection.send({
            refused: request.id,
            reason: error instanceof Error ? error.message : String(error),
          }),
      );
    },
  });
  context.subscriptions.push(
    connection,
    teller,
    vscode.window.onDidChangeActiveTextEditor(() => teller.moved()),
    vscode.window.onDidChangeTextEditorSelection(() => teller.moved()),
    vscode.workspace.onDidChangeTextDocument(() => teller.moved()),
    vscode.workspace.onDidSaveTextDocument(() => teller.moved()),
    vscode.workspace.onDidChangeWorkspaceFolders(hello),
    vscode.window.onDidChangeWindowState((state) => {
      if (state.focused) {
        connection.connect();
        teller.again();
      }
    }),
    vscode.commands.registerCommand("navrel.connect", () => connection.connect()),
  );
  connection.connect();
}

export function deactivate(): void {
  // Everything is disposed of with the context.
}
