// What inherits from what.
import { useEffect, useMemo } from "preact/hooks";
import { open } from "../actions";
import { loadList } from "../loading";
import { Empty } from "../parts/Empty";
import { Header } from "../parts/Header";
import { Row } from "../parts/Row";
import { type RowPlace, WindowedList } from "../parts/WindowedList";
import { hierarchy, type TypeItem, type TypeRow } from "../model/hierarchy";
import { lookOf } from "../model/kinds";
import { type Target, useStore } from "../store";
import { kUpToMore } from "./MoreScreen";

function targetOf({ name, kind, file, line }: TypeItem): Target | undefined {
  return file && { kind: kind ?? "class", name, file, ...(line === undefined ? {} : { line }) };
}

export function TypesPage() {
  const { value, problem } = useStore((state) => state.types);
  useEffect(() => void loadList("types"), []);
  const rows = useMemo(() => hierarchy(value?.items ?? []), [value]);
  return (
    <>
      <Header title="Types" up={kUpToMore} />
      {problem ? (
        <Empty title={problem.text}>{problem.hint}</Empty>
      ) : !value ? (
        <Empty title="Reading the types…" />
      ) : rows.length === 0 ? (
        <Empty title="This project declares no types." />
      ) : (
        <WindowedList name="Types" memory="types" rows={rows} keyOf={keyOf} draw={draw} />
      )}
    </>
  );
}

const keyOf = ({ item }: TypeRow) => `${item.name} ${item.kind} ${item.file?.id} ${item.line}`;

function draw({ item, depth }: TypeRow, place: RowPlace) {
  const target = targetOf(item);
  const others = (item.inherits ?? []).slice(depth > 0 ? 1 : 0);
  return (
    <Row
      place={place}
      look={lookOf(item.kind ?? "class")}
      name={item.name}
      beside={others.length > 0 ? `: ${others.join(", ")}` : undefined}
      below={item.file ? item.file.name : "declared elsewhere"}
      depth={depth}
      isDim={!item.known}
      target={target}
      onTap={target && (() => open(target))}
    />
  );
}
