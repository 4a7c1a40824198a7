// A stand-in for the editor's own programming interface: as much of it as the extension uses. It records what it
// is asked, and tests move its cursor.

export class Emitter {
  #listeners = new Set();
  event = (listener) => {
    this.#listeners.add(listener);
    return { dispose: () => this.#listeners.delete(listener) };
  };
  fire(value) {
    for (const listener of this.#listeners) {
      listener(value);
    }
  }
}

class Position {
  constructor(line, character) {
    this.line = line;
    this.character = character;
  }
}

class Selection {
  constructor(anchor, active) {
    this.anchor = anchor;
    this.active = active;
  }
}

/** One window with documents by path: each a list of lines. Those in `slow` are there when a promise is fulfilled. */
export function standIn(documents, folders) {
  const emitters = {
    editor: new Emitter(), selection: new Emitter(), text: new Emitter(), save: new Emitter(),
    folders: new Emitter(), window: new Emitter(),
  };
  const uri = (path) => ({ scheme: "file", fsPath: path });
  const documentAt = (path) => {
    const lines = documents[path];
    if (lines === undefined) {
      throw new Error(`cannot open ${path}: it is not there`);
    }
    return {
      uri: uri(path), isDirty: false, lineCount: lines.length,
      lineAt: (line) => ({ text: lines[line], range: { end: new Position(line, lines[line].length) } }),
    };
  };
  const window = {
    activeTextEditor: undefined,
    state: { focused: true },
    onDidChangeActiveTextEditor: emitters.editor.event,
    onDidChangeTextEditorSelection: emitters.selection.event,
    onDidChangeWindowState: emitters.window.event,
    showTextDocument: async (document) => {
      const editor = { document, selection: new Selection(new Position(0, 0), new Position(0, 0)), revealRange() {} };
      window.activeTextEditor = editor;
      emitters.editor.fire(editor);
      return editor;
    },
  };
  return {
    window,
    workspace: {
      workspaceFolders: folders.map((path) => ({ uri: uri(path) })),
      openTextDocument: async ({ fsPath }) => {
        const document = documentAt(fsPath);
        await documents.slow?.[fsPath];
        return document;
      },
      onDidChangeTextDocument: emitters.text.event,
      onDidSaveTextDocument: emitters.save.event,
      onDidChangeWorkspaceFolders: emitters.folders.event,
    },
    commands: {
      executed: [],
      registerCommand: () => ({ dispose() {} }),
      async executeCommand(command) {
        this.executed.push(command);
        this.during = window.activeTextEditor?.document.uri.fsPath;
      },
    },
    env: { appName: "Stand-in" },
    Uri: { file: uri },
    Position,
    Selection,
    TextEditorRevealType: { InCenterIfOutsideViewport: 2 },
    /** For tests: puts the cursor somewhere. */
    moveTo(line, character) {
      window.activeTextEditor.selection = new Selection(new Position(line, character), new Position(line, character));
      emitters.selection.fire({});
    },
    /** For tests: closes the file that is shown. */
    leaveFile() {
      window.activeTextEditor = undefined;
      emitters.editor.fire(undefined);
    },
    focus: () => emitters.window.fire({ focused: true }),
  };
}
