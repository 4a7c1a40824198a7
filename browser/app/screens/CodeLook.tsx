// A look at the code, which leaves the editor where it is.
import { useEffect, useMemo, useState } from "preact/hooks";
import { open } from "../actions";
import { problemOf } from "../messages";
import { Empty } from "../parts/Empty";
import { Header } from "../parts/Header";
import { type RowPlace, WindowedList } from "../parts/WindowedList";
import { type Loaded, type Look, now, useStore } from "../store";
import { type Shape, wire } from "../wire/wire";

/** Around the line that is looked at; what is further away comes with a tap. */
const kLinesBefore = 200;
const kLinesAfter = 600;
const kLinesMore = 1_000;

interface Lines {
  from: number;
  total: number;
  text: string;
  lines: readonly string[];
}

/** What was read for a look. It may be drawn again in another pane, and is to be the same there. */
const kept = new WeakMap<Look, Lines>();

function linesOf({ from, to, total, text }: Shape.Source): Lines {
  return { from, total, text, lines: to < from ? [] : text.split("\n") };
}

/** What was read to its end is read to its end again, wherever that is now. */
const lastWanted = ({ from, total, lines }: Lines) => from + lines.length - 1 + (from + lines.length > total ? kLinesMore : 0);

const isSame = (a: Lines | undefined, b: Lines) => a?.from === b.from && a.total === b.total && a.text === b.text;

const loadedOf = (value: Lines | undefined): Loaded<Lines> => (value ? { value } : {});

export function CodeLook({ look, onClose }: { look: Look; onClose: () => void }) {
  const [loaded, setLoaded] = useState<Loaded<Lines>>(() => loadedOf(kept.get(look)));
  const load = async (from: number, to: number) => {
    try {
      const value = linesOf(await wire.source(look.file, Math.max(1, from), to));
      if (!isSame(kept.get(look), value)) kept.set(look, value);
      setLoaded(loadedOf(kept.get(look)));
    } catch (error) {
      setLoaded((before) => ({ ...before, problem: problemOf(error) }));
    }
  };
  const changes = useStore((state) => state.lookChanges);
  useEffect(() => {
    const before = kept.get(look);
    setLoaded(loadedOf(before));
    void (before ? load(before.from, lastWanted(before)) : load(look.line - kLinesBefore, look.line + kLinesAfter));
  }, [look, changes]);

  const { value, problem } = loaded;
  return (
    <>
      <Header title={look.name} below={value && `Lines ${value.from} to ${value.from + value.lines.length - 1} of ${value.total}`} up={{ name: "the outline", onTap: onClose }}>
        <button type="button" class="tool" onClick={() => openLine(look, look.line)}>
          Open line {look.line}
        </button>
      </Header>
      {problem && <Empty title={problem.text}>{problem.hint}</Empty>}
      {!value && !problem && <Empty title="Reading the code…" />}
      {value && !problem && <Code look={look} value={value} load={(from, to) => void load(from, to)} />}
    </>
  );
}

function openLine(look: Look, line: number): void {
  const path = now().tree.node(look.file)?.path ?? look.name;
  open({ kind: "file", name: look.name, file: { id: look.file, name: look.name, path }, line });
}

type Entry = { key: string; line: number; text: string } | { key: string; from: number; to: number };

function Code({ look, value, load }: { look: Look; value: Lines; load: (from: number, to: number) => void }) {
  const { from, total, lines } = value;
  const entries = useMemo((): Entry[] => {
    const end = from + lines.length;
    const rows: Entry[] = lines.map((text, index) => ({ key: `l${from + index}`, line: from + index, text }));
    if (from > 1) rows.unshift({ key: "before", from: from - kLinesMore, to: from + kLinesMore - 1 });
    if (end <= total) rows.push({ key: "after", from: end - kLinesBefore, to: end + kLinesMore });
    return rows;
  }, [value]);
  if (total === 0) return <Empty title="This file is empty." />;
  const draw = (entry: Entry, place: RowPlace) =>
    "line" in entry ? (
      <CodeLine entry={entry} place={place} isLit={entry.line === look.line} onTap={() => openLine(look, entry.line)} />
    ) : (
      <li class="row" aria-setsize={place.count} aria-posinset={place.index + 1} data-row={place.index}>
        <button type="button" class="row-main more-lines" tabIndex={place.isCursor ? 0 : -1} onClick={() => load(entry.from, entry.to)}>
          {entry.key === "before" ? "Earlier lines" : "Later lines"}
        </button>
      </li>
    );
  return (
    <div class="code">
      <WindowedList
        name={`Code of ${look.name}`}
        memory={`code ${look.file} ${from}`}
        rows={entries}
        keyOf={(entry) => entry.key}
        draw={draw}
        show={entries.findIndex((entry) => "line" in entry && entry.line === look.line)}
      />
    </div>
  );
}

function CodeLine({ entry, place, isLit, onTap }: { entry: { line: number; text: string }; place: RowPlace; isLit: boolean; onTap: () => void }) {
  return (
    <li class={`code-line${isLit ? " lit" : ""}`} aria-setsize={place.count} aria-posinset={place.index + 1} data-row={place.index} aria-current={isLit ? "location" : undefined}>
      <button type="button" tabIndex={place.isCursor ? 0 : -1} aria-label={`Open line ${entry.line}`} onClick={onTap}>
        {entry.line}
      </button>
      <code>{entry.text || " "}</code>
    </li>
  );
}
