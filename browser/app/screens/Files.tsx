// The project's groups and files, one group a page, in the project's order.
import { useMemo } from "preact/hooks";
import { showFile } from "../actions";
import { Empty } from "../parts/Empty";
import { Header } from "../parts/Header";
import { Row } from "../parts/Row";
import { type RowPlace, WindowedList } from "../parts/WindowedList";
import { fileLook, lookOf } from "../model/kinds";
import { counted } from "../model/words";
import type { TreeNode } from "../model/tree";
import { go, placeOf } from "../places";
import { type Target, useStore } from "../store";
import { NoProject } from "./NoProject";

export function Files() {
  const tree = useStore((state) => state.tree);
  const group = useStore(() => placeOf("files").group);
  const activeID = useStore((state) => state.active.file?.id);
  const revealed = useStore((state) => state.revealed);
  const beside = useStore((state) => (state.isWide ? state.outlineFile : undefined));
  const shown = tree.node(group) ?? tree.root;
  const rows = useMemo(() => (shown ? tree.children(shown.id) : []), [tree, shown?.id]);
  const lit = useMemo(() => {
    const way = new Set(activeID === undefined ? [] : tree.way(activeID).map((node) => node.id));
    return rows.findIndex((row) => way.has(row.id));
  }, [tree, rows, activeID]);
  if (!shown) return <NoProject title="Files" />;
  const parent = tree.node(shown.parent);
  return (
    <>
      <Header title={shown.name} below={shown.path || undefined} up={parent && { name: parent.name, onTap: () => showGroup(parent) }} />
      {rows.length === 0 ? (
        <EmptyGroup isProject={!parent} />
      ) : (
        <WindowedList
          key={shown.id}
          name={`Files in ${shown.name}`}
          memory={`files ${shown.id}`}
          rows={rows}
          keyOf={(row) => row.id}
          draw={(row, place) => <NodeRow node={row} place={place} isLit={place.index === lit || row.id === revealed} isShown={row.id === beside} />}
          follow={lit}
          show={revealed === undefined ? undefined : rows.findIndex((row) => row.id === revealed)}
        />
      )}
    </>
  );
}

function EmptyGroup({ isProject }: { isProject: boolean }) {
  if (!isProject) return <Empty title="This group is empty." />;
  return <Empty title="This project shows no files.">Add some in Xcode. Files of a type that is switched off are left out: see File types under More.</Empty>;
}

function showGroup(node: TreeNode): void {
  go(node.parent === undefined ? { tab: "files" } : { tab: "files", group: node.id });
}

export function targetOfNode({ id, name, path = "" }: TreeNode): Target {
  return { kind: "file", name, file: { id, name, path } };
}

function NodeRow({ node, place, isLit, isShown }: { node: TreeNode; place: RowPlace; isLit: boolean; isShown: boolean }) {
  const isFile = node.kind === "file";
  return (
    <Row
      place={place}
      look={isFile ? fileLook(node.language) : lookOf(node.kind)}
      name={node.name}
      below={node.missing ? "is missing on disk" : undefined}
      end={isFile ? undefined : <Count of={node.children.length} />}
      isLit={isLit}
      isShown={isShown}
      isDim={node.missing === true}
      target={isFile ? targetOfNode(node) : undefined}
      onTap={() => (isFile ? showFile(node.id) : showGroup(node))}
    />
  );
}

function Count({ of }: { of: number }) {
  return (
    <>
      <span aria-hidden="true">{of.toLocaleString("en")} ›</span>
      <span class="hidden">{counted(of, "entry", "entries")}</span>
    </>
  );
}
