// The requests that the page makes, each with the type of its answer. Nothing else calls `fetch`.
import type * as Shape from "./shapes";

export type { Shape };

/** Why a request came to nothing. */
export type Failure =
  | "away" // no answer: Navrel has ended, or the network has
  | "unpaired" // this device is not, or no longer, paired
  | "refused"; // an answer that says no

export class WireError extends Error {
  constructor(
    readonly failure: Failure,
    message: string,
    readonly hint?: string,
    readonly status?: number,
  ) {
    super(message);
  }
}

/** Answers come from a snapshot in memory: one that takes longer than this is not coming. */
const kAnswerMilliseconds = 8_000;

/** Read by the server as a sign that a page of its own asks, and not a form of another site's. */
const kOwnPage = { "X-Navrel": "1" };

async function request(path: string, options: RequestInit = {}): Promise<Response> {
  const controller = new AbortController();
  const giveUp = () => controller.abort();
  const timer = setTimeout(giveUp, kAnswerMilliseconds);
  options.signal?.addEventListener("abort", giveUp);
  let response: Response;
  try {
    response = await fetch(path, { ...options, signal: controller.signal });
  } catch {
    throw new WireError("away", "Navrel does not answer.");
  } finally {
    clearTimeout(timer);
    options.signal?.removeEventListener("abort", giveUp);
  }
  if (!response.ok) throw await errorOf(response);
  return response;
}

/** What an answer that says no says. */
export async function errorOf(response: Response): Promise<WireError> {
  const said = (await response.json().catch(() => ({}))) as Partial<Shape.Error>;
  const failure = response.status === 401 ? "unpaired" : "refused";
  const message = said.error ?? `Navrel refused this (${response.status}).`;
  return new WireError(failure, message, said.hint, response.status);
}

/** Before a request that only reads is made again: a server at its bounds has room a moment later. */
const kPauses = [300, 1_000, 3_000] as const;
const kTooMany = 429;

const mayPass = (error: unknown) => error instanceof WireError && (error.failure === "away" || error.status === kTooMany);

async function get<Answer>(path: string, signal?: AbortSignal, pauses: readonly number[] = kPauses): Promise<Answer> {
  try {
    const response = await request(path, signal ? { signal } : {});
    return (await response.json()) as Answer;
  } catch (error) {
    const [pause, ...others] = pauses;
    if (pause === undefined || signal?.aborted || !mayPass(error)) throw error;
    await new Promise((done) => setTimeout(done, pause));
    return get(path, signal, others);
  }
}

function post(path: string, body: unknown): Promise<Response> {
  return request(path, {
    method: "POST",
    headers: { ...kOwnPage, "Content-Type": "application/json" },
    body: JSON.stringify(body),
  });
}

async function postForRequest(path: string, body: unknown): Promise<Shape.Open> {
  return (await (await post(path, body)).json()) as Shape.Open;
}

export interface SearchQuery {
  text: string;
  kinds: readonly string[];
  limit: number;
}

function searchPath({ text, kinds, limit }: SearchQuery): string {
  const query = new URLSearchParams({ q: text, limit: String(limit) });
  if (kinds.length > 0) query.set("kinds", kinds.join(","));
  return `/api/search?${query}`;
}

export const wire = {
  state: () => get<Shape.State>("/api/state"),
  tree: () => get<Shape.Tree>("/api/tree"),
  treeSince: (revision: number) => get<Shape.Tree | Shape.TreeChanges>(`/api/tree?since=${revision}`),
  outline: (file: string) => get<Shape.Outline>(`/api/files/${file}/outline`),
  source: (file: string, from: number, to: number) =>
    get<Shape.Source>(`/api/files/${file}/source?from=${from}&to=${to}`),
  search: (query: SearchQuery, signal?: AbortSignal) => get<Shape.Search>(searchPath(query), signal),
  types: () => get<Shape.Types>("/api/types"),
  notes: () => get<Shape.Notes>("/api/notes"),
  fileTypes: () => get<Shape.FileTypes>("/api/filetypes"),
  changes: () => get<Shape.Changes>("/api/changes"),
  open: (body: Shape.OpenRequest) => postForRequest("/api/open", body),
  back: () => postForRequest("/api/back", {}),
  switchFileTypes: async (body: Shape.FileTypes): Promise<void> => {
    await post("/api/filetypes", body);
  },
  pair: async (body: Shape.PairRequest): Promise<void> => {
    await post("/api/pair", body);
  },
};
