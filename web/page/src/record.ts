// The complete record as a tree that is read as it is opened, with search.
import {announce, append, bytesText, h, number, plural, visible} from './dom.js';
import {Cancelled} from './engine.js';
import type {JsonNode} from './json_text.js';
import type {Context, View} from './view.js';
import {VirtualList} from './virtual_list.js';

interface Row {
  node: JsonNode;
  level: number;
  path: string; // as torvio names it
  parent: Row | null;
  position: number;
  siblings: number;
  children: Row[] | null;
  isOpen: boolean;
}

const mostHits = 10000;

export class RecordView implements View {
  private rows: Row[] = [];
  private root: Row | null = null;
  private picked: Row | null = null;
  private list!: VirtualList;
  private context!: Context;
  private hits: number[] = [];
  private hit = -1;
  private query = '';
  private readonly pane = h('div', {class: 'tree', role: 'tree', tabindex: 0, 'aria-label': 'Record'});
  private readonly status = h('span', {class: 'soft', role: 'status'});
  private readonly detail = h('div', {class: 'detail', 'aria-live': 'polite'});
  private ready!: Promise<void>;

  open(context: Context): HTMLElement {
    this.context = context;
    this.list = new VirtualList(this.pane, () => 24, (index) => this.draw(index));
    const search =
      h('input', {type: 'search', 'aria-label': 'Search names and values', placeholder: 'Search names and values'});
    const form = h('form', {
      class: 'bar',
      role: 'search',
      submit: (event: SubmitEvent) => {
        event.preventDefault();
        this.search(search.value, 1).catch(this.failed);
      }
    },
      search, h('button', {type: 'submit'}, 'Next'),
      h('button', {type: 'button', click: () => this.search(search.value, -1).catch(this.failed)}, 'Previous'),
      this.status);
    search.addEventListener('keydown', (event) => {
      if (event.key !== 'Enter' || !event.shiftKey) return;
      event.preventDefault();
      this.search(search.value, -1).catch(this.failed);
    });
    this.pane.addEventListener('keydown', (event) => this.key(event));
    this.pane.addEventListener('click', (event) => {
      const index = Number((event.target as Element).closest<HTMLElement>('[data-index]')?.dataset.index ?? NaN);
      const row = this.rows[index];
      if (!row) return;
      this.pick(row);
      if (this.hasChildren(row)) this.toggle(row).catch(this.failed);
    });
    this.status.textContent = 'Reading the record…';
    this.ready = this.start();
    this.ready.catch(this.failed);
    return h('div', {class: 'record'}, form, this.pane, this.detail);
  }
  close(): void {}

  // Selects a member by its path, such as "partList.parts[3].x".
  async reveal(path: string): Promise<void> {
    await this.ready;
    let row = this.root;
    for (const step of path.match(/[^.[\]]+|\[\d+\]/g) ?? []) {
      const next: Row | null = row && await this.childOf(row, step.startsWith('[') ? Number(step.slice(1, -1)) : step);
      if (next === null) {
        this.status.textContent = `The record has no member ${visible(path)}; it is stored, but kept in another form`;
        break;
      }
      row = next;
    }
    if (row !== null && row !== this.root) await this.show(row);
  }

  private readonly failed = (error: Error): void => {
    if (!(error instanceof Cancelled)) this.status.textContent = visible(error.message);
  };

  private async start(): Promise<void> {
    const {node, size} = await this.context.engine.ask('root', this.context.source);
    this.root = {node, level: 0, path: '', parent: null, position: 1, siblings: 1, children: null, isOpen: true};
    const top = await this.load(this.root);
    const record = top.find((row) => row.node.key === 'record');
    if (record?.node.kind === 'object') {
      // The tree shows only the record; the rest of the document is in the header of the page.
      this.root = record;
      record.path = '';
      record.level = 0;
      record.isOpen = true;
      await this.load(record);
    }
    this.status.textContent = `${bytesText(size)} as JSON`;
    if (record?.node.kind !== 'object')
      this.status.textContent = 'The file has no record: its kind is unknown or its version refused';
    this.flatten();
  }

  private hasChildren({node}: Row): boolean {
    return node.kind === 'object' ? node.end - node.start > 2
                                  : node.kind === 'group' || (node.kind === 'array' && node.count > 0);
  }

  private async load(row: Row): Promise<Row[]> {
    if (row.children) return row.children;
    const nodes = await this.context.engine.ask('children', {...this.context.source, node: row.node});
    row.children = nodes.map((node, i) => ({
      node,
      level: row.level + 1,
      parent: row,
      position: i + 1,
      siblings: nodes.length,
      children: null,
      isOpen: false,
      path: node.kind === 'group'      ? row.path
        : typeof node.key === 'number' ? `${row.path}[${node.key}]`
        : row.path ? `${row.path}.${node.key}`
                   : node.key,
    }));
    return row.children;
  }

  private async childOf(row: Row, key: string | number): Promise<Row | null> {
    const children = await this.load(row);
    for (const child of children) {
      if (child.node.key === key) return child;
      if (child.node.kind === 'group' && typeof key === 'number' && key >= child.node.first &&
        key < child.node.first + child.node.count)
        return this.childOf(child, key);
    }
    return null;
  }

  private flatten(): void {
    this.rows = [];
    const add = (row: Row): void => {
      for (const child of row.children ?? []) {
        this.rows.push(child);
        if (child.isOpen) add(child);
      }
    };
    if (this.root) add(this.root);
    this.list.setCount(this.rows.length);
  }

  private async toggle(row: Row, isOpen = !row.isOpen): Promise<void> {
    if (isOpen) await this.load(row);
    row.isOpen = isOpen;
    this.flatten();
  }

  private async show(row: Row): Promise<void> {
    for (let above = row.parent; above !== null; above = above.parent) {
      await this.load(above);
      above.isOpen = true;
    }
    this.flatten();
    this.pick(row);
  }

  private pick(row: Row): void {
    this.picked = row;
    const index = this.rows.indexOf(row);
    if (index < 0) return;
    this.list.reveal(index);
    this.list.redraw();
    this.pane.setAttribute('aria-activedescendant', `record-${index}`);
    const {node, path} = row;
    const text = node.kind === 'value' ? this.valueText(node) : this.countText(row);
    this.detail.replaceChildren(h('code', {class: 'path'}, visible(path)), h('span', {class: 'value'}, text),
      h('button', {type: 'button', click: () => this.showBytes(path)}, 'Show the bytes'));
    if (node.kind === 'value' && node.preview.endsWith('…')) {
      this.context.engine.ask('text', {...this.context.source, node}).then((complete) => {
        if (this.picked === row)
          (this.detail.querySelector('.value') as Element).textContent = visible(complete.slice(0, 5000));
      }, () => undefined);
    }
  }

  private showBytes(path: string): void {
    this.status.textContent = 'Looking for the bytes…';
    this.context.engine.ask('locate', {...this.context.source, path, isExact: true}).then((place) => {
      this.status.textContent = place ? '' : `No bytes are stored under the name ${visible(path)}`;
      if (place) this.context.showBytes(place.offset, place.size);
    }).catch(this.failed);
  }

  private async search(query: string, direction: number): Promise<void> {
    await this.ready;
    if (query === '') return;
    if (query !== this.query) {
      this.status.textContent = 'Searching…';
      this.hits = (await this.context.engine.ask('find', {...this.context.source, query, most: mostHits}))
        .filter((place) => this.root && place >= this.root.node.start && place < this.root.node.end);
      this.query = query;
      this.hit = direction > 0 ? -1 : 0;
    }
    const count = this.hits.length;
    if (count === 0) {
      this.status.textContent = 'Nothing found';
      announce('Nothing found');
      return;
    }
    this.hit = (this.hit + direction + count) % count;
    const place = this.hits[this.hit] as number;
    // The hit may be in the name of a member, before its value.
    let row = this.root as Row;
    for (let next: Row | undefined = row; next;) {
      row = next;
      if (!this.hasChildren(row)) break;
      next = (await this.load(row)).find((child) => place < child.node.end);
    }
    await this.show(row);
    const found = `${number(this.hit + 1)} of ${count === mostHits ? `the first ${number(count)}` : number(count)}`;
    this.status.textContent = found;
    announce(`${found}: ${visible(row.path)}`);
  }

  private valueText({preview}: JsonNode): string {
    return visible(preview);
  }
  private countText(row: Row): string {
    const {node} = row;
    if (node.kind === 'object') return '';
    return node.kind === 'group' ? plural(node.count, 'element')
      : node.count === 0         ? 'empty list'
                                 : plural(node.count, 'element');
  }

  private draw(index: number): HTMLElement {
    const row = this.rows[index] as Row;
    const {node, level} = row;
    const isParent = this.hasChildren(row);
    const line = h('div', {
      id: `record-${index}`,
      class: `tree-row${row === this.picked ? ' picked' : ''}`,
      role: 'treeitem',
      'data-index': index,
      'aria-level': level,
      'aria-posinset': row.position,
      'aria-setsize': row.siblings,
      'aria-selected': String(row === this.picked),
      'aria-expanded': isParent ? String(row.isOpen) : null,
    });
    line.style.paddingInlineStart = `${Math.min(level - 1, 12) * 18 + 8}px`;
    append(line, h('span', {class: 'twist', 'aria-hidden': 'true'}, isParent ? (row.isOpen ? '▾' : '▸') : ''),
      h('span', {class: 'key'},
        typeof node.key === 'number' ? `[${node.key}]`
          : node.kind === 'group' ? `[${node.key}]`
                                  : visible(node.key)));
    if (node.kind === 'value') {
      const type = node.preview.startsWith('"') ? 'string' : 'number';
      append(line, h('span', {class: `value ${type}`}, this.valueText(node)));
    } else {
      append(line, h('span', {class: 'soft count'}, this.countText(row)));
      if (isParent && !row.isOpen && node.kind !== 'group')
        append(line, h('span', {class: 'soft preview'}, visible(node.preview)));
    }
    return line;
  }

  private key(event: KeyboardEvent): void {
    if (event.ctrlKey || event.metaKey || event.altKey || this.rows.length === 0) return;
    const row = this.picked, index = row ? this.rows.indexOf(row) : -1;
    const to = (next: number): void => this.pick(this.rows[Math.max(0, Math.min(this.rows.length - 1, next))] as Row);
    const keys: Record<string, () => void> = {
      ArrowDown: () => to(index + 1),
      ArrowUp: () => to(index - 1),
      Home: () => to(0),
      End: () => to(this.rows.length - 1),
      PageDown: () => to(index + this.list.visible),
      PageUp: () => to(index - this.list.visible),
      ArrowRight: () => {
        if (!row || !this.hasChildren(row)) return;
        if (row.isOpen)
          to(index + 1);
        else
          this.toggle(row).then(() => this.pick(row), this.failed);
      },
      ArrowLeft: () => {
        if (!row) return;
        if (row.isOpen)
          this.toggle(row).then(() => this.pick(row), this.failed);
        else if (row.parent && row.parent !== this.root)
          this.pick(row.parent);
      },
      Enter: () => {
        if (row && this.hasChildren(row)) this.toggle(row).then(() => this.pick(row), this.failed);
      },
    };
    keys[' '] = keys.Enter as () => void;
    const act = keys[event.key];
    if (!act) return;
    event.preventDefault();
    act();
  }
}
