// The `vell` global of a script. Evaluates to a function that receives the bridge to the application:
// `native(method, paramsText) -> resultText`, and the application's version.
(function (native, version) {
  "use strict";

  const defined = (params) => Object.fromEntries(Object.entries(params).filter(([, value]) => value !== undefined));
  const call = (method, params = {}) => JSON.parse(native(method, JSON.stringify(defined(params))));
  const plainText = (runs) => runs.map((run) => run.string).join("");

  // A row, an id or a path, as the reference that the application reads.
  const reference = (value) => (value instanceof Row ? String(value.id) : value === undefined ? undefined : String(value));
  const references = (values) => [values].flat().map(reference);
  // No reference at all would read every row.
  const listed = (outline, ids) => (ids.length === 0 ? [] : outline.rows(...ids));
  const placed = ({ parent, to, position, before, after } = {}) => ({
    parent: reference(parent),
    to: reference(to),
    position: position === undefined ? undefined : String(position),
    before: reference(before),
    after: reference(after),
  });

  class Row {
    #outline;
    #state;

    constructor(outline, state) {
      this.#outline = outline;
      this.#state = state;
    }

    get outline() { return this.#outline; }
    get id() { return this.#state.id; }
    get type() { return this.#state.type; }
    get runs() { return this.#state.text; }
    get text() { return plainText(this.#state.text); }
    get persistentId() { return this.#state.persistentId ?? null; }
    get attributes() { return { ...this.#state.attributes }; }
    get created() { return new Date(this.#state.created); }
    get modified() { return new Date(this.#state.modified); }

    get parent() {
      const state = call("script.parent", { outline: this.#outline.id, row: this.id });
      return state && new Row(this.#outline, state);
    }
    get children() {
      const states = call("script.children", { outline: this.#outline.id, row: this.id });
      return states.map((state) => new Row(this.#outline, state));
    }

    set text(value) { this.update({ text: [{ string: String(value) }].filter((run) => run.string !== "") }); }
    set type(value) { this.update({ type: value }); }
    set persistentId(value) { this.update({ persistentId: value }); }

    // Changes fields as `vell update rows` does; a field that is refused throws.
    update(changes) {
      const [{ row, fieldErrors }] = call("row.update", { outline: this.#outline.id, rows: [String(this.id)], ...changes });
      this.#state = row;
      if (fieldErrors) throw new Error(Object.entries(fieldErrors).map(([field, fault]) => `${field}: ${fault}`).join("; "));
      return this;
    }
    append(markdown) { return this.update({ append: markdown }); }
    prepend(markdown) { return this.update({ prepend: markdown }); }
    attribute(name) { return this.#state.attributes?.[name] ?? null; }
    setAttribute(name, value) { return this.update({ attributes: { [name]: value === null ? null : String(value) } }); }
    removeAttribute(name) { return this.setAttribute(name, null); }

    move(place) { [this.#state] = this.#outline.moveRows(this, place).map((row) => row.#state); return this; }
    delete() { return this.#outline.deleteRows(this); }
    createRow(markdown, place = {}) { return this.#outline.createRow(markdown, { parent: this, ...place }); }
    createRows(markdown, place = {}) { return this.#outline.createRows(markdown, { parent: this, ...place }); }

    toJSON() { return this.#state; }
    toString() { return this.text; }
  }

  class Outline {
    #summary;

    constructor(summary) { this.#summary = summary; }

    get id() { return this.#summary.persistentId; }
    get persistentId() { return this.#summary.persistentId; }
    get displayName() { return this.#summary.displayName; }
    get fileURL() { return this.#summary.fileURL; }
    get markdown() { return this.read("markdown"); }

    // The whole outline in one of the output formats.
    read(format) { return call("outline.get", { outline: this.id, format, shape: "tree", rows: false, rowRefs: [] }); }

    // Rows by reference, in outline order; every row when none is given.
    rows(...refs) {
      const params = { outline: this.id, format: "session", shape: "flat", rows: true, rowRefs: references(refs) };
      return call("outline.get", params).map((state) => new Row(this, state));
    }
    row(ref) { return this.rows(ref)[0] ?? null; }

    createRow(markdown = "", place) {
      return new Row(this, call("row.create", { outline: this.id, markdown, ...placed(place) }));
    }
    createRows(markdown, place) {
      return call("row.createMany", { outline: this.id, markdown, ...placed(place) }).map((state) => new Row(this, state));
    }
    moveRows(rows, place) {
      const params = { outline: this.id, rows: references(rows), ...placed(place) };
      return call("row.move", params).map((state) => new Row(this, state));
    }
    deleteRows(...rows) { return call("row.delete", { outline: this.id, rows: references(rows.flat()) }).deleted; }
    bringToFront() { call("outline.bringToFront", { outline: this.id }); return this; }
    save(path) { this.#summary = call("script.save", { outline: this.id, path: reference(path) }); return this; }
    close({ discard } = {}) { return call("outline.close", { outline: this.id, discard }); }

    toJSON() { return this.#summary; }
    toString() { return this.displayName; }
  }

  class Selection {
    #outline;
    #state;

    constructor(outline, state) {
      this.#outline = outline;
      this.#state = state;
    }

    // Null while nothing is selected.
    get anchor() { return this.#state.rows.length === 0 ? null : this.#outline.row(this.#state.anchor); }
    get head() { return this.#state.rows.length === 0 ? null : this.#outline.row(this.#state.head); }
    get rows() { return listed(this.#outline, this.#state.rows); }
    get text() { return this.#state.text; }
    // The word at the caret, which stands at the start of the row's text.
    get word() { return this.#state.text.match(/[\p{L}\p{N}_'’-]+/u)?.[0] ?? null; }

    toJSON() { return this.#state; }
  }

  class OutlineEditor {
    #entry;

    constructor(entry) { this.#entry = entry; }

    get #state() { return call("editor.get", { editor: this.id }); }
    get id() { return this.#entry.id; }
    get outline() { return vell.outlines.find((outline) => outline.id === this.#entry.outlineId); }
    get selection() { return new Selection(this.outline, this.#state.selection); }
    // Null at the root.
    get focusedRow() {
      const row = this.outline.row("@focused");
      return row.type === "root" ? null : row;
    }
    get collapsed() { return listed(this.outline, this.#state.collapsed); }

    // Performs commands in order: [{ id, performed }].
    perform(...ids) { return call("command.perform", { editor: this.id, ids: ids.flat() }); }
    // Focus, fold and selection, as `vell update editor`.
    update({ focus, select, selectHead, expand, collapse }) {
      call("editor.update", {
        outline: this.#entry.outlineId,
        focus: reference(focus),
        selectRow: reference(select),
        selectHead: reference(selectHead),
        expand: expand && references(expand),
        collapse: collapse && references(collapse),
      });
      return this;
    }

    toJSON() { return this.#state; }
  }

  const vell = Object.freeze({
    version,
    get outlines() { return call("outline.list").map((summary) => new Outline(summary)); },
    get frontmostOutline() { return this.outlines[0] ?? null; },
    get outlineEditors() { return call("editor.list").map((entry) => new OutlineEditor(entry)); },
    get frontmostOutlineEditor() { return this.outlineEditors[0] ?? null; },
    get commands() { return call("command.list"); },
    // What a path selects in every open outline: [{ outline, rows }], without outlines in which it selects nothing.
    search(path) {
      const found = this.outlines.map((outline) => ({ outline, rows: outline.rows(path) }));
      return found.filter(({ rows }) => rows.length > 0);
    },
    createOutline(format) { return new Outline(call("outline.new", { format })); },
  });
  return vell;
})
