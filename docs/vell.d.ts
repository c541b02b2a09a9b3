// What scripts for `vell evaluate script` find in their global scope. scripting.md tells the same in prose.

/** A session id, a persistent id, an outline path, "@selection", "@focused", or the row itself. */
type RowRef = Row | number | string;
type Format = "session" | "json" | "markdown" | "vell" | "opml" | "txt";
/** Children are counted from 0; `before` and `after` go before `parent` and `position`. */
type Place = { parent?: RowRef; position?: "start" | "end" | number; before?: RowRef; after?: RowRef };
type Target = { to?: RowRef; position?: "start" | "end" | number; before?: RowRef; after?: RowRef };
type Run = { string: string; attrs?: Record<string, string> };
/** Vell-flavored markdown, or styled runs. */
type RowText = string | Run[];

interface Vell {
  readonly version: string;
  /** Frontmost first. */
  readonly outlines: Outline[];
  readonly frontmostOutline: Outline | null;
  /** Frontmost first. */
  readonly outlineEditors: OutlineEditor[];
  readonly frontmostOutlineEditor: OutlineEditor | null;
  readonly commands: { id: string; source: string | null }[];
  /** What an outline path selects in every open outline, frontmost first; outlines without such rows are left out. */
  search(path: string): { outline: Outline; rows: Row[] }[];
  createOutline(format?: Exclude<Format, "session">): Outline;
}

interface Outline {
  readonly id: string;
  readonly persistentId: string;
  readonly displayName: string;
  /** null before the first save */
  readonly fileURL: string | null;
  /** Every row without references. */
  rows(...refs: RowRef[]): Row[];
  /** null where a path matches no row; throws where no row has that id. */
  row(ref: RowRef): Row | null;
  read(format: "session" | "json"): object;
  read(format: "markdown" | "vell" | "opml" | "txt"): string;
  readonly markdown: string;
  createRow(markdown?: string, place?: Place): Row;
  createRows(markdown: string, place?: Place): Row[];
  moveRows(rows: RowRef | RowRef[], place: Target): Row[];
  /** How many rows went, descendants included. */
  deleteRows(...rows: RowRef[]): number;
  /** Keeps it in a new file from now on; an absolute path, whose extension tells the format. */
  save(path: string): Outline;
  bringToFront(): Outline;
  close(options?: { discard?: boolean }): { closed: true };
}

/** A row as it was when it was read, and as its own methods made it. */
interface Row {
  readonly id: number;
  get persistentId(): string | null;
  set persistentId(id: string);
  type: string;
  /** Without styles; setting it takes the text literally. */
  text: string;
  readonly runs: Run[];
  readonly attributes: Record<string, string>;
  attribute(name: string): string | null;
  setAttribute(name: string, value: string): Row;
  removeAttribute(name: string): Row;
  readonly created: Date;
  readonly modified: Date;
  readonly outline: Outline;
  readonly parent: Row | null;
  readonly children: Row[];
  update(changes: {
    text?: RowText;
    append?: RowText;
    prepend?: RowText;
    type?: string;
    /** null removes */
    attributes?: Record<string, string | null>;
    persistentId?: string;
  }): Row;
  append(markdown: string): Row;
  prepend(markdown: string): Row;
  createRow(markdown?: string, place?: Place): Row;
  createRows(markdown: string, place?: Place): Row[];
  move(place: Target): Row;
  /** How many rows went, descendants included. */
  delete(): number;
}

interface OutlineEditor {
  readonly id: string;
  readonly outline: Outline;
  /** `word` is the word at the caret. */
  readonly selection: { anchor: Row | null; head: Row | null; rows: Row[]; text: string; word: string | null };
  /** null at the root */
  readonly focusedRow: Row | null;
  readonly collapsed: Row[];
  perform(...ids: string[]): { id: string; performed: boolean }[];
  update(changes: {
    focus?: RowRef;
    select?: RowRef;
    selectHead?: RowRef;
    expand?: RowRef[];
    collapse?: RowRef[];
  }): OutlineEditor;
}

declare const vell: Vell;
