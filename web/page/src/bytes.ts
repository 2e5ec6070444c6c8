// The bytes of a file next to its fields. The fields come in windows of the file: a file of 50 MB has millions of them.
import {announce, append, bytesText, h, hex, number, plural, visible} from './dom.js';
import {Cancelled} from './engine.js';
import type {Fields} from './protocol.js';
import type {Context, View} from './view.js';
import {VirtualList} from './virtual_list.js';

interface Field {
  offset: number;
  size?: number;
  field: string;
  type?: string;
  value?: unknown;
  note?: string;
  remark?: string;
  fault?: string;
}

const windowSize = 1 << 19, mostWindows = 6, rowHeight = 20;

export class BytesView implements View {
  private context!: Context;
  private bytes: Uint8Array | null = null;
  private size = 0;
  private perRow = 16;
  private readonly windows = new Map<number, Promise<Fields>>();
  private current: Fields | null = null;
  private wanted = -1;
  private timer = 0;
  private picked: {offset: number, size: number} | null = null;
  private pickedField = -1;
  private byteList!: VirtualList;
  private fieldList!: VirtualList;
  private ready!: Promise<void>;
  private isOpen = true;
  private readonly bytePane = h('div', {
    class: 'pane bytes',
    tabindex: 0,
    role: 'region',
    'aria-label': 'Bytes. Up and down move by rows, left and right select the field before and after.'
  });
  private readonly fieldPane = h('div', {class: 'pane fields', tabindex: 0, role: 'listbox', 'aria-label': 'Fields'});
  private readonly fieldHead = h('div', {class: 'pane-head'});
  private readonly status = h('span', {class: 'soft', role: 'status'});
  private readonly detail =
    h('div', {class: 'detail', 'aria-live': 'polite'}, h('span', {class: 'soft'}, 'Select a byte or a field.'));

  open(context: Context): HTMLElement {
    this.context = context;
    this.size = context.entry.file.size;
    const goTo = h(
      'input', {type: 'search', 'aria-label': 'Go to an offset or a field', placeholder: '0x1f4, 500 or shapes[3].x'});
    const form = h('form', {class: 'bar', role: 'search', submit: (event: SubmitEvent) => {
      event.preventDefault();
      this.goTo(goTo.value.trim()).catch(this.failed);
    }}, goTo, h('button', {type: 'submit'}, 'Go'), this.status);
    this.byteList = new VirtualList(
      this.bytePane, () => rowHeight, (row) => this.drawBytes(row), (first, last) => this.drawn(first, last));
    this.fieldList = new VirtualList(this.fieldPane, () => rowHeight, (row) => this.drawField(row));
    const bytesHead =
      h('div', {class: 'pane-head'}, h('b', {}, 'Bytes'), h('span', {class: 'soft'}, bytesText(this.size)));
    const panes =
      h('div', {class: 'panes'}, h('section', {class: 'byte-section', 'aria-label': 'Bytes'}, bytesHead, this.bytePane),
        h('section', {'aria-label': 'Fields'}, this.fieldHead, this.fieldPane));
    for (const pane of [this.bytePane, this.fieldPane]) {
      pane.addEventListener('mouseover', (event) => this.point(this.fieldOf(event.target as Element)));
      pane.addEventListener('mouseleave', () => this.point(-1));
      pane.addEventListener('click', (event) => {
        const field = this.fieldOf(event.target as Element);
        if (field >= 0) this.pick(field, pane);
      });
      pane.addEventListener('keydown', (event) => this.key(event, pane));
    }
    new ResizeObserver(() => this.layOut()).observe(panes);
    this.ready = context.entry.file.arrayBuffer().then((buffer) => {
      this.bytes = new Uint8Array(buffer);
      this.layOut(true);
    });
    this.ready.catch(this.failed);
    return h('div', {class: 'bytes-view'}, form, panes, this.detail);
  }
  close(): void { this.isOpen = false; }

  // Shows some bytes and selects them.
  async reveal(offset: number, size: number): Promise<void> {
    await this.ready;
    this.picked = {offset, size: Math.max(size, 1)};
    this.pickedField = -1;
    this.byteList.scrollTo(Math.max(0, Math.floor(offset / this.perRow) * rowHeight - 100));
    this.byteList.redraw();
    await this.load(Math.floor(Math.min(offset, this.size - 1) / windowSize));
    const field = this.fieldAt(offset);
    if (field < 0) {
      // Shows where the field would be: before the next one, or at the fault.
      const next = this.current?.offsets.findIndex((one) => one >= offset) ?? -1;
      this.fieldList.reveal(next < 0 ? this.fieldList.count - 1 : next);
      this.detail.replaceChildren(h('span', {}, `Byte ${number(offset)} (0x${hex(offset)}) is in no field`));
    } else if (size > this.entry(field).sizeOf) {
      this.fieldList.reveal(field);
      this.detail.replaceChildren(h('span', {}, `${plural(size, 'byte')} from 0x${hex(offset)} on`));
    } else {
      this.pick(field);
    }
  }

  private readonly failed = (error: Error): void => {
    if (!(error instanceof Cancelled)) this.status.textContent = visible(error.message);
  };

  private layOut(isFirst = false): void {
    const perRow = this.bytePane.clientWidth > 0 && this.bytePane.clientWidth < 590 ? 8 : 16;
    if (!this.bytes || (perRow === this.perRow && !isFirst)) return;
    this.perRow = perRow;
    this.byteList.setCount(Math.ceil(this.size / perRow));
  }

  // ---- windows of fields ----

  private drawn(first: number, last: number): void {
    const middle = Math.min(this.size - 1, Math.floor((first + last) / 2) * this.perRow);
    const index = Math.max(0, Math.floor(middle / windowSize));
    if (index === this.wanted || !this.isOpen) return;
    this.wanted = index;
    window.clearTimeout(this.timer);
    // Waits, so that windows that are only scrolled past are not loaded.
    this.timer = window.setTimeout(() => this.load(index).catch(this.failed), this.windows.size === 0 ? 0 : 150);
  }

  private windowOf(index: number): Promise<Fields> {
    const known = this.windows.get(index);
    if (known) return known;
    const from = index * windowSize, to = Math.min(this.size, from + windowSize);
    // Requests that were not begun are for bytes that are no longer in view.
    this.context.engine.drop('fields');
    const asked = this.context.engine.ask('fields', {...this.context.source, from, to: Math.max(to, from + 1)});
    this.windows.set(index, asked);
    asked.catch(() => this.windows.delete(index));
    const [oldest] = this.windows.keys();
    if (this.windows.size > mostWindows && oldest !== undefined) this.windows.delete(oldest);
    if (this.size > 0) {
      this.status.textContent = `Reading the fields of bytes ${number(from)} to ${number(to - 1)}…`;
    }
    return asked;
  }

  private async load(index: number): Promise<void> {
    this.wanted = index;
    const fields = await this.windowOf(index);
    if (this.wanted !== index || !this.isOpen) return;
    this.status.textContent = '';
    if (this.current === fields) return;
    this.current = fields;
    this.pickedField = -1;
    const count = fields.sizes.length, isAll = this.size <= windowSize;
    this.fieldHead.replaceChildren(h('b', {}, plural(count, 'field')),
      isAll ? '' : h('span', {class: 'soft'}, `of bytes ${hex(fields.from)} to ${hex(fields.to - 1)}`));
    if (!isAll) {
      append(this.fieldHead,
        h('button', {type: 'button', disabled: index === 0, click: () => this.toWindow(index - 1)}, 'Earlier'),
        h('button', {type: 'button', disabled: fields.to >= this.size, click: () => this.toWindow(index + 1)},
          'Later'));
    }
    this.fieldList.setCount(count);
    this.fieldList.scrollTo(0);
    const top = this.fieldAt(this.byteList.first * this.perRow);
    if (top > 0) this.fieldList.reveal(top);
    this.byteList.redraw();
  }

  private toWindow(index: number): void {
    this.byteList.scrollTo(Math.floor(index * windowSize / this.perRow) * rowHeight);
    this.load(index).catch(this.failed);
  }

  private entry(index: number): {offset: number, sizeOf: number} {
    return {offset: this.current?.offsets[index] ?? 0, sizeOf: this.current?.sizes[index] ?? 0};
  }
  private field(index: number): Field {
    const {text, starts} = this.current as Fields;
    return JSON.parse(text.slice(starts[index], starts[index + 1])) as Field;
  }
  // The field of the window that contains a byte; -1 if there is none.
  private fieldAt(offset: number): number {
    if (!this.current) return -1;
    const {offsets, sizes} = this.current;
    let low = 0, high = offsets.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if ((offsets[middle] as number) <= offset) low = middle + 1;
      else high = middle;
    }
    let i = low - 1;
    while (i >= 0 && sizes[i] === 0) --i;
    return i >= 0 && offset < (offsets[i] as number) + (sizes[i] as number) ? i : -1;
  }

  // ---- rows ----

  private drawBytes(row: number): HTMLElement {
    const bytes = this.bytes as Uint8Array, from = row * this.perRow, to = Math.min(from + this.perRow, bytes.length);
    const hexes = h('span', {class: 'hex'}), chars = h('span', {class: 'chars'});
    const offsets = this.current?.offsets, sizes = this.current?.sizes;
    for (let at = from; at < to;) {
      const field = this.fieldAt(at);
      let end = at + 1;
      if (field >= 0) end = Math.min(to, (offsets?.[field] as number) + (sizes?.[field] as number));
      else while (end < to && this.fieldAt(end) < 0) ++end;
      let text = '', letters = '', isZero = true;
      for (let i = at; i < end; ++i) {
        const value = bytes[i] as number;
        isZero &&= value === 0;
        text += (i > at ? ' ' : '') + hex(value, 2);
        letters += value >= 0x20 && value < 0x7f ? String.fromCharCode(value) : '·';
      }
      const isPicked = this.picked !== null && at < this.picked.offset + this.picked.size && end > this.picked.offset;
      const look = (field < 0      ? 'none'
                       : field % 2 ? 'odd'
                                   : 'even') +
        (isZero ? ' zero' : '') + (isPicked ? ' picked' : '');
      const data = field < 0 ? {} : {'data-field': field};
      hexes.append(h('span', {class: look, ...data}, text));
      if (end < to) hexes.append(' ');
      chars.append(h('span', {class: look, ...data}, letters));
      at = end;
    }
    return h('div', {class: `row per-${this.perRow}`}, h('span', {class: 'at'}, hex(from)), hexes, chars);
  }

  private valueText(field: Field): string {
    if (field.fault !== undefined) return visible(field.fault);
    if (field.remark !== undefined) return visible(field.remark);
    if (field.value === null) return field.note ? visible(field.note) : 'reserved';
    return typeof field.value === 'string' ? visible(JSON.stringify(field.value)) : JSON.stringify(field.value);
  }

  private drawField(index: number): HTMLElement {
    const field = this.field(index);
    const isPicked = index === this.pickedField;
    const dot = field.field.lastIndexOf('.') + 1;
    const look = field.fault !== undefined ? ' fault' : field.remark !== undefined ? ' remark' : '';
    return h('div', {
      id: `field-${index}`,
      class: `row${look}${isPicked ? ' picked' : ''} ${index % 2 ? 'odd' : 'even'}`,
      role: 'option',
      'data-field': index,
      'aria-selected': String(isPicked),
      'aria-posinset': index + 1,
      'aria-setsize': this.fieldList.count,
      title: visible(field.field),
    },
      h('span', {class: 'at'}, hex(field.offset)), h('span', {class: 'size'}, field.size ? String(field.size) : ''),
      h('span', {class: 'path'}, h('span', {}, visible(field.field.slice(0, dot))),
        h('b', {}, visible(field.field.slice(dot)))),
      h('span', {class: 'value'}, this.valueText(field)));
  }

  private fieldOf(target: Element): number {
    const data = target.closest<HTMLElement>('[data-field]')?.dataset.field;
    return data === undefined ? -1 : Number(data);
  }

  private point(field: number): void {
    for (const pane of [this.bytePane, this.fieldPane]) {
      for (const old of pane.querySelectorAll('.hot')) old.classList.remove('hot');
      if (field >= 0) for (const one of pane.querySelectorAll(`[data-field="${field}"]`)) one.classList.add('hot');
    }
  }

  private pick(index: number, from: HTMLElement | null = null): void {
    const {offset, sizeOf} = this.entry(index);
    this.picked = {offset, size: sizeOf};
    this.pickedField = index;
    if (from !== this.fieldPane) this.fieldList.reveal(index);
    if (from !== this.bytePane) {
      this.byteList.reveal(Math.floor((offset + Math.max(sizeOf, 1) - 1) / this.perRow));
      this.byteList.reveal(Math.floor(offset / this.perRow));
    }
    this.fieldList.redraw();
    this.byteList.redraw();
    this.fieldPane.setAttribute('aria-activedescendant', `field-${index}`);
    const field = this.field(index);
    this.detail.replaceChildren(h('code', {class: 'path'}, visible(field.field) || '(file)'),
      h('span', {class: 'soft'},
        sizeOf > 0 ? `${field.type ?? ''}, ${plural(sizeOf, 'byte')} at ${number(offset)} (0x${hex(offset)})`
                   : `at 0x${hex(offset)}`),
      h('span', {class: 'value'}, this.valueText(field)),
      field.note && field.value !== null ? h('span', {class: 'soft'}, visible(field.note)) : '',
      h('button', {type: 'button', click: () => this.context.showRecord(field.field)}, 'Show in the record'));
  }

  private async goTo(text: string): Promise<void> {
    if (text === '') return;
    const isOffset = /^(0x[0-9a-f]+|\d+)$/i.test(text);
    const place = isOffset
      ? {offset: Number(text), size: 1}
      : await this.context.engine.ask('locate', {...this.context.source, path: text, isExact: false});
    if (place === null || place.offset >= this.size) {
      this.status.textContent = isOffset ? 'The file ends before that' : `No field is called ${visible(text)}`;
      announce(this.status.textContent);
      return;
    }
    this.status.textContent = '';
    await this.reveal(place.offset, place.size);
  }

  private key(event: KeyboardEvent, pane: HTMLElement): void {
    if (event.ctrlKey || event.metaKey || event.altKey || !this.current) return;
    const isFields = pane === this.fieldPane;
    const list = isFields ? this.fieldList : this.byteList;
    const count = this.current.sizes.length;
    const top = this.byteList.first * this.perRow;
    const to = (field: number): void => { if (count > 0) this.pick(Math.max(0, Math.min(count - 1, field))); };
    const next = (by: number): void =>
      to(this.pickedField < 0 ? Math.max(this.fieldAt(top), 0) : this.pickedField + by);
    const rows = (by: number): void => list.scrollTo((list.first + by) * rowHeight);
    const keys: Record<string, () => void> = isFields ? {
      ArrowDown: () => next(1),
      ArrowUp: () => next(-1),
      PageDown: () => next(list.visible),
      PageUp: () => next(-list.visible),
      Home: () => to(0),
      End: () => to(count - 1)
    }
                                                      : {
                                                          ArrowRight: () => next(1),
                                                          ArrowLeft: () => next(-1),
                                                          ArrowDown: () => rows(1),
                                                          ArrowUp: () => rows(-1),
                                                          PageDown: () => rows(list.visible),
                                                          PageUp: () => rows(-list.visible),
                                                          Home: () => list.scrollTo(0),
                                                          End: () => list.scrollTo(list.count * rowHeight)
                                                        };
    const act = keys[event.key];
    if (!act) return;
    event.preventDefault();
    act();
  }
}
