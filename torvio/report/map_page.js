"use strict";
// Fields are in chunks of lines; only the lines in view are elements of the page, so that it stays fast with a million
// fields. Everything from the file is set as text.
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const bytes = Uint8Array.from(atob(data.bytes), (c) => c.charCodeAt(0));
  const byId = (id) => document.getElementById(id);
  const hex = (value, digits) => value.toString(16).padStart(digits, "0");
  const hexOffset = (value) => hex(value, 8);
  const plural = (count, one) => `${count.toLocaleString("en")} ${one}${count === 1 ? "" : "s"}`;
  const fieldCount = data.count;
  const perChunk = data.perChunk;

  // ---- fields ----

  // One line: its beginning (a number of data.beginnings, or "=" and the beginning itself), "|", and the value. A
  // beginning: characters shared with the path before, the rest of the path, the size (and the offset, unless it follows
  // the field before), the type. A type of "!" is a remark, "!!" the fault.
  const beginnings = data.beginnings.map((text) => text.split("|"));
  const decodeChunk = (index) => {
    const [start, text] = data.chunks[index];
    let path = "";
    let end = start;
    return text.split("\n").map((line, i) => {
      const columns = line.split("|");
      const isWritten = line[0] === "=";
      const [shared, rest, extent, type] = isWritten ? [columns[0].slice(1), ...columns.slice(1, 4)] : beginnings[columns[0]];
      const value = columns.slice(isWritten ? 4 : 1).join("|");
      path = path.slice(0, Number(shared)) + rest;
      const at = extent.indexOf("@");
      const size = Number(at < 0 ? extent : extent.slice(0, at));
      const offset = at < 0 ? end : Number(extent.slice(at + 1));
      end = offset + size;
      return { index: index * perChunk + i, offset, size, path, type, value };
    });
  };
  const cache = new Map();
  const chunk = (index) => {
    let fields = cache.get(index);
    if (!fields) {
      if (cache.size > 200) cache.clear();
      fields = decodeChunk(index);
      cache.set(index, fields);
    }
    return fields;
  };
  const field = (index) => chunk(Math.floor(index / perChunk))[index % perChunk];

  // The field that contains the byte, or null.
  const fieldAt = (offset) => {
    let low = 0;
    let high = data.chunks.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (data.chunks[middle][0] <= offset) low = middle + 1;
      else high = middle;
    }
    if (low === 0) return null;
    return chunk(low - 1).find((f) => f.offset <= offset && offset < f.offset + f.size) || null;
  };

  // ---- lists of which only the lines in view exist ----

  const rowHeight = 22;
  const highest = 8000000; // browsers limit the height of elements

  class List {
    constructor(pane, count, draw) {
      this.pane = pane;
      this.count = count;
      this.draw = draw;
      this.total = count * rowHeight;
      this.spacer = document.createElement("div");
      this.rows = document.createElement("div");
      this.rows.className = "rows";
      this.rows.setAttribute("role", "none");
      this.spacer.setAttribute("role", "none");
      this.spacer.style.height = `${Math.min(this.total, highest)}px`;
      pane.append(this.spacer, this.rows);
      pane.addEventListener("scroll", () => this.schedule());
      new ResizeObserver(() => this.schedule()).observe(pane);
    }
    get scale() {
      const view = this.pane.clientHeight;
      const height = Math.min(this.total, highest);
      return this.total > highest ? (this.total - view) / (height - view) : 1;
    }
    get top() { return this.pane.scrollTop * this.scale; }
    get visible() { return Math.max(1, Math.floor(this.pane.clientHeight / rowHeight)); }
    schedule() {
      if (this.waiting) return;
      this.waiting = true;
      requestAnimationFrame(() => { this.waiting = false; this.render(); });
    }
    render() {
      const top = this.top;
      const first = Math.max(0, Math.min(this.count - 1, Math.floor(top / rowHeight)));
      const last = Math.min(this.count, first + this.visible + 2);
      const rows = [];
      for (let i = first; i < last; ++i) rows.push(this.draw(i));
      this.rows.replaceChildren(...rows);
      const limit = Math.min(this.total, highest) - (last - first) * rowHeight;
      const y = this.scale === 1 ? first * rowHeight : Math.min(this.pane.scrollTop - (top - first * rowHeight), Math.max(limit, 0));
      this.rows.style.transform = `translateY(${y}px)`;
    }
    // Scrolls as little as possible.
    reveal(index, last = index) {
      const top = this.top;
      const view = this.pane.clientHeight;
      let wanted = top;
      if ((last + 1) * rowHeight > top + view) wanted = (last + 1) * rowHeight - view;
      if (index * rowHeight < wanted) wanted = index * rowHeight;
      if (wanted !== top) {
        // From far away, scrolls the line to a third of the view.
        if (Math.abs(wanted - top) > view) wanted = Math.max(0, index * rowHeight - view / 3);
        this.pane.scrollTop = wanted / this.scale;
      }
      this.schedule();
    }
  }

  const element = (name, className, text) => {
    const made = document.createElement(name);
    if (className) made.className = className;
    if (text !== undefined) made.textContent = text;
    return made;
  };

  let picked = null; // fields
  let hot = null;
  let cursor = 0; // a byte
  const same = (a, b) => a !== null && b !== null && a.index === b.index;
  const markOf = (f) => (same(f, picked) ? " picked" : same(f, hot) ? " hot" : "");
  const tint = (f) => (f.index % 2 === 0 ? "e" : "o");

  const perRow = 16;
  const drawBytes = (row) => {
    const line = element("div", "row");
    const from = row * perRow;
    const hexes = element("span", "hex");
    const chars = element("span", "chars");
    let f = null;
    for (let i = 0; i < perRow && from + i < bytes.length; ++i) {
      const at = from + i;
      if (f === null || at < f.offset || at >= f.offset + f.size) f = fieldAt(at);
      const value = bytes[at];
      const look = f === null ? "b unread" : `b ${tint(f)}${markOf(f)}`;
      const printable = value >= 0x20 && value < 0x7f;
      for (const [parent, text] of [[hexes, hex(value, 2)], [chars, printable ? String.fromCharCode(value) : "·"]]) {
        const cell = element("span", look, text);
        cell.dataset.at = at;
        if (value === 0) cell.classList.add("zero");
        if (at === cursor && document.activeElement === bytePane) cell.classList.add("cursor");
        parent.append(cell);
      }
    }
    for (let i = hexes.childElementCount; i < perRow; ++i) hexes.append(element("span", "", "  "));
    line.append(element("span", "at", hexOffset(from)), hexes, chars);
    return line;
  };

  const drawField = (index) => {
    const f = field(index);
    const isRemark = f.type === "!" || f.type === "!!";
    const kind = f.type === "!!" ? " fault" : isRemark ? " remark" : "";
    const line = element("div", `row ${tint(f)}${kind}${markOf(f)}`);
    line.id = `field-${index}`;
    line.dataset.index = index;
    line.setAttribute("role", "option");
    line.setAttribute("aria-selected", String(same(f, picked)));
    line.setAttribute("aria-setsize", String(fieldCount));
    line.setAttribute("aria-posinset", String(index + 1));
    line.append(element("span", "soft", hexOffset(f.offset)));
    if (isRemark) {
      line.append(element("span", ""), element("span", "type"));
      line.append(element("span", "what", (f.path ? `${f.path}: ` : "") + f.value));
    } else {
      const path = element("span", "path");
      const dot = f.path.lastIndexOf(".") + 1;
      path.append(element("span", "", f.path.slice(0, dot)), element("b", "", f.path.slice(dot)));
      path.title = f.path;
      line.append(element("span", "number soft", String(f.size)), element("span", "type soft", f.type), path,
                  element("span", "value", f.value));
    }
    return line;
  };

  const bytePane = byId("bytes");
  const fieldPane = byId("fields");
  const byteList = new List(bytePane, Math.ceil(bytes.length / perRow), drawBytes);
  const fieldList = new List(fieldPane, fieldCount, drawField);
  const redraw = () => { byteList.schedule(); fieldList.schedule(); };

  const describe = (f) => {
    byId("name").textContent = f ? f.path || "(file)" : "No field";
    byId("value").textContent = f ? f.value : "";
    const extent = (size) => `${plural(size, "byte")}`;
    byId("where").textContent = !f ? `byte ${cursor} (0x${hexOffset(cursor)}) is in no field`
      : f.size > 0 ? `${f.type} · ${extent(f.size)} at ${f.offset} (0x${hexOffset(f.offset)})`
      : `at ${f.offset} (0x${hexOffset(f.offset)})`;
  };

  const revealBytes = (f) => {
    if (bytes.length === 0) return;
    const at = Math.min(f.offset, bytes.length - 1);
    const first = Math.floor(at / perRow);
    const last = Math.floor(Math.min(at + Math.max(f.size, 1) - 1, bytes.length - 1) / perRow);
    byteList.reveal(first, Math.min(last, first + byteList.visible - 1));
  };
  const pick = (f, from) => {
    picked = f;
    describe(f);
    if (f) {
      if (from !== "bytes") {
        cursor = Math.min(f.offset, Math.max(bytes.length - 1, 0));
        revealBytes(f);
      }
      fieldList.reveal(f.index);
      fieldPane.setAttribute("aria-activedescendant", `field-${f.index}`);
    }
    redraw();
  };
  const pickByte = (at) => {
    cursor = Math.max(0, Math.min(bytes.length - 1, at));
    pick(fieldAt(cursor), "bytes");
    byteList.reveal(Math.floor(cursor / perRow));
  };
  const heat = (f, from) => {
    if (f === hot || same(f, hot)) return;
    hot = f;
    if (f && from === "bytes") fieldList.reveal(f.index);
    if (f && from === "fields") revealBytes(f);
    redraw();
  };

  // ---- mouse ----

  const atOf = (event) => {
    const cell = event.target.closest("[data-at]");
    return cell ? Number(cell.dataset.at) : null;
  };
  const indexOf = (event) => {
    const line = event.target.closest("[data-index]");
    return line ? Number(line.dataset.index) : null;
  };
  bytePane.addEventListener("pointerover", (event) => {
    const at = atOf(event);
    if (at !== null) heat(fieldAt(at), "bytes");
  });
  fieldPane.addEventListener("pointerover", (event) => {
    const index = indexOf(event);
    if (index !== null) heat(field(index), "fields");
  });
  for (const pane of [bytePane, fieldPane]) pane.addEventListener("pointerleave", () => heat(null));
  bytePane.addEventListener("click", (event) => { const at = atOf(event); if (at !== null) pickByte(at); });
  fieldPane.addEventListener("click", (event) => { const index = indexOf(event); if (index !== null) pick(field(index)); });

  // ---- keyboard ----

  // How many lines a key moves; "start" and "end" for the ends.
  const move = (event, list) => {
    switch (event.key) {
      case "ArrowUp": return -1;
      case "ArrowDown": return 1;
      case "PageUp": return 1 - list.visible;
      case "PageDown": return list.visible - 1;
      default: return 0;
    }
  };
  fieldPane.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const now = picked ? picked.index : 0;
    let next = now + move(event, fieldList);
    if (event.key === "Home") next = 0;
    else if (event.key === "End") next = fieldCount - 1;
    else if (next === now) return;
    event.preventDefault();
    pick(field(Math.max(0, Math.min(fieldCount - 1, next))));
  });
  bytePane.addEventListener("keydown", (event) => {
    if (event.altKey || event.metaKey) return;
    let next = cursor + move(event, byteList) * perRow;
    if (event.key === "ArrowLeft") next = cursor - 1;
    else if (event.key === "ArrowRight") next = cursor + 1;
    else if (event.key === "Home") next = event.ctrlKey ? 0 : cursor - (cursor % perRow);
    else if (event.key === "End") next = event.ctrlKey ? bytes.length - 1 : cursor - (cursor % perRow) + perRow - 1;
    else if (next === cursor) return;
    event.preventDefault();
    pickByte(next);
  });
  for (const pane of [bytePane, fieldPane]) {
    pane.addEventListener("focus", redraw);
    pane.addEventListener("blur", redraw);
  }
  document.addEventListener("keydown", (event) => {
    if (event.key === "/" && document.activeElement.tagName !== "INPUT") {
      event.preventDefault();
      byId("find").focus();
      byId("find").select();
    }
  });

  // ---- search ----

  const say = (text) => { byId("said").textContent = text; };
  let searching = 0;
  const find = (step) => {
    const wanted = byId("find").value.toLowerCase();
    if (wanted === "" || fieldCount === 0) return;
    const mine = ++searching;
    const start = picked ? picked.index : step > 0 ? -1 : 0;
    let tried = 0;
    const some = () => {
      if (mine !== searching) return;
      for (let i = 0; i < 20000; ++i) {
        if (++tried > fieldCount) { say("no match"); return; }
        const at = (((start + step * tried) % fieldCount) + fieldCount) % fieldCount;
        const f = field(at);
        if (f.path.toLowerCase().includes(wanted) || f.value.toLowerCase().includes(wanted)) {
          const wrapped = step > 0 ? at <= start : at >= start;
          say(wrapped && picked ? "continued at the other end" : "");
          pick(f);
          return;
        }
      }
      say("searching…");
      setTimeout(some);
    };
    some();
  };
  byId("finder").addEventListener("submit", (event) => { event.preventDefault(); find(1); });
  byId("find").addEventListener("keydown", (event) => {
    if (event.key === "Enter" && event.shiftKey) { event.preventDefault(); find(-1); }
    if (event.key === "Escape") fieldPane.focus();
  });
  byId("back").addEventListener("click", () => find(-1));
  byId("goer").addEventListener("submit", (event) => {
    event.preventDefault();
    const text = byId("go-to").value.trim();
    const at = /^0x[0-9a-f]+$/i.test(text) || /^[0-9]+$/.test(text) ? Number(text) : NaN;
    if (!(at < bytes.length)) { say("no such byte"); return; }
    say("");
    pickByte(at);
    revealBytes({ offset: at, size: 1 });
  });

  // ---- facts ----

  const fact = (text, className) => byId("facts").append(element("li", className, text));
  if (data.kind) fact(data.kind);
  if (data.version !== null) fact(`version ${data.version}`);
  fact(plural(bytes.length, "byte"));
  fact(plural(data.fieldCount, "field"));
  fact(data.verdict, data.look);
  const first = data.look === "bad" && fieldCount > 0 ? field(fieldCount - 1) : fieldCount > 0 ? field(0) : null;
  const start = () => { pick(first); fieldPane.focus({ preventScroll: true }); };
  requestAnimationFrame(start);
})();
