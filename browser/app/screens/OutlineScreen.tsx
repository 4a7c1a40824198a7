// What a file declares, in its order, with the line of the editor lit.
import { useMemo } from "preact/hooks";
import { back, open, showFile, step } from "../actions";
import { Choice } from "../parts/Choice";
import { Empty } from "../parts/Empty";
import { Header } from "../parts/Header";
import { Row } from "../parts/Row";
import { type RowPlace, WindowedList } from "../parts/WindowedList";
import { languageName, lookOf } from "../model/kinds";
import { type OutlineRow, outlineRows, rowAtLine, type StopKind } from "../model/outlineRows";
import { closeLook, go } from "../places";
import { now, type Target, update, useStore } from "../store";
import type { Shape } from "../wire/wire";
import { CodeLook } from "./CodeLook";
import { NoProject } from "./NoProject";

export function OutlineScreen() {
  const look = useStore((state) => state.place.look);
  return look ? <CodeLook key={look.file} look={look} onClose={closeLook} /> : <OutlineOfFile />;
}

function OutlineOfFile() {
  const id = useStore((state) => state.outlineFile);
  const loaded = useStore((state) => (id === undefined ? undefined : state.outlines.get(id)));
  const hasProject = useStore((state) => state.tree.rootID !== undefined);
  const isWide = useStore((state) => state.isWide);
  if (id === undefined) {
    // Beside the files, which say the same.
    if (!hasProject) return isWide ? <Header title="Outline" /> : <NoProject title="Outline" />;
    return (
      <>
        <Header title="Outline" />
        <Empty title="No file is shown.">
          <p>Choose one in Files, or open one of the project in your editor.</p>
          <button type="button" class="wide-button narrow-only" onClick={() => go({ tab: "files" })}>
            Show the files
          </button>
        </Empty>
      </>
    );
  }
  if (loaded?.value) return <Shown outline={loaded.value} />;
  const name = now().tree.node(id)?.name ?? "Outline";
  return (
    <>
      <Header title={name} />
      {loaded?.problem ? <Empty title={loaded.problem.text}>{loaded.problem.hint}</Empty> : <Empty title="Reading the outline…" />}
    </>
  );
}

function fileTarget({ id, name, path }: Shape.Outline): Target {
  return { kind: "file", name, file: { id, name, path } };
}

function Shown({ outline }: { outline: Shape.Outline }) {
  const rows = useMemo(() => outlineRows(outline), [outline]);
  const headings = useMemo(() => rows.flatMap((row, index) => (row.type === "heading" && row.heading.text ? [index] : [])), [rows]);
  const follow = useStore((state) => state.follow);
  const active = useStore((state) => state.active);
  const stepLine = useStore((state) => state.stepLine);
  const isWide = useStore((state) => state.isWide);
  const activeLine = active.file?.id === outline.id ? (active.file.line ?? active.symbol?.line) : undefined;
  const lit = follow === "off" || activeLine === undefined ? -1 : rowAtLine(rows, activeLine);
  const stepped = stepLine > 0 ? rows.findIndex((row) => row.line === stepLine) : -1;
  const group = now().tree.node(outline.id)?.parent;
  const up = isWide || group === undefined ? undefined : { name: "Files", onTap: () => go({ tab: "files", group }) };

  return (
    <>
      <Header title={outline.name} below={outline.path} up={up}>
        <Counterparts outline={outline} />
        <button type="button" class="tool" onClick={() => open(fileTarget(outline))}>
          Open
        </button>
      </Header>
      {rows.length === 0 ? (
        <NothingDeclared outline={outline} />
      ) : (
        <WindowedList
          key={outline.id}
          name={`Outline of ${outline.name}`}
          memory={`outline ${outline.id}`}
          rows={rows}
          keyOf={(row) => row.key}
          draw={(row, place) => <OutlineEntry outline={outline} row={row} place={place} isLit={place.index === lit} isWide={isWide} />}
          headings={headings}
          drawHeading={(row) => (row.type === "heading" ? row.heading.text : "")}
          follow={follow === "scroll" ? lit : undefined}
          show={stepped >= 0 ? stepped : undefined}
        />
      )}
      <Steps />
    </>
  );
}

function NothingDeclared({ outline }: { outline: Shape.Outline }) {
  if (outline.language === undefined) return <Empty title="This file is no source.">Tap Open to see it in your editor.</Empty>;
  return <Empty title="Nothing is declared here.">This {languageName(outline.language)} file has no symbols, marks or notes.</Empty>;
}

/** ".h" says enough beside the file's own name, where a whole name leaves no room for that. */
const extensionOf = (name: string) => name.slice(Math.max(name.lastIndexOf("."), 0));

function Counterparts({ outline }: { outline: Shape.Outline }) {
  const [first] = outline.counterparts;
  if (!first) return null;
  return (
    <button type="button" class="tool" aria-label={`Counterpart: ${first.name}`} onClick={() => showFile(first.id)}>
      <span aria-hidden="true">⇄ {extensionOf(first.name)}</span>
    </button>
  );
}

const tapOf = (target: Target) => () => {
  open(target);
};

interface Entry {
  outline: Shape.Outline;
  row: OutlineRow;
  place: RowPlace;
  isLit: boolean;
  /** Whether there is room for a declaration beside its name. */
  isWide: boolean;
}

function OutlineEntry({ outline, row, place, isLit, isWide }: Entry) {
  const { id, name, path } = outline;
  const file = { id, name, path };
  const end = <LineNumber line={row.line} />;
  switch (row.type) {
    case "heading":
      return <HeadingRow row={row.heading} place={place} target={{ kind: "mark", name: row.heading.text || "—", file, line: row.line }} />;
    case "note": {
      const target: Target = { kind: row.note.kind, name: row.note.text, file, line: row.line };
      return <Row place={place} look={lookOf(row.note.kind)} name={row.note.text} depth={row.depth} end={end} target={target} onTap={tapOf(target)} />;
    }
    case "symbol": {
      const { symbol } = row;
      const target: Target = { kind: symbol.kind, name: symbol.name, file, line: row.line };
      if (symbol.signature) target.detail = symbol.signature;
      const beside = symbol.inherits?.length ? `: ${symbol.inherits.join(", ")}` : isWide && lookOf(symbol.kind).colour !== "type" ? symbol.signature : undefined;
      return (
        <Row place={place} look={lookOf(symbol.kind)} name={symbol.name} beside={beside} depth={row.depth} end={end} isLit={isLit} target={target} onTap={tapOf(target)} />
      );
    }
  }
}

export function LineNumber({ line }: { line: number }) {
  return (
    <>
      <span class="hidden">line </span>
      {line}
    </>
  );
}

function HeadingRow({ row, place, target }: { row: Shape.Heading; place: RowPlace; target: Target }) {
  return (
    <li class={`row heading${row.separator ? " separated" : ""}`} aria-setsize={place.count} aria-posinset={place.index + 1} data-row={place.index}>
      <button type="button" class="row-main" tabIndex={place.isCursor ? 0 : -1} onClick={tapOf(target)}>
        <span class="row-text">{row.text || <span class="hidden">separator</span>}</span>
        <span class="row-end">
          <LineNumber line={row.line} />
        </span>
      </button>
    </li>
  );
}

const kStops: readonly { value: StopKind; text: string }[] = [
  { value: "symbol", text: "Symbol" },
  { value: "heading", text: "Mark" },
  { value: "note", text: "Note" },
];

function Steps() {
  const stop = useStore((state) => state.stop);
  const word = kStops.find(({ value }) => value === stop)!.text.toLowerCase();
  return (
    <div class="steps" role="toolbar" aria-label="In the editor">
      <button type="button" class="big" aria-label={`Previous ${word}`} onClick={() => step(-1)}>
        <span aria-hidden="true">↑</span>
      </button>
      <Choice name="Step by" values={kStops} chosen={stop} onChoose={(value) => update({ stop: value })} />
      <button type="button" class="big" aria-label={`Next ${word}`} onClick={() => step(1)}>
        <span aria-hidden="true">↓</span>
      </button>
      <button type="button" class="big back" onClick={back}>
        <span aria-hidden="true">↩ </span>Back
      </button>
    </div>
  );
}
