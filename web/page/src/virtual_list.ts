// A list of which only the rows in view are elements of the page.

const highest = 8e6; // pixels: browsers limit the height of elements

export class VirtualList {
  count = 0;
  private top = 0; // pixels of the complete list
  private readonly spacer = document.createElement('div');
  private readonly rows = document.createElement('div');
  private readonly made = new Map<number, HTMLElement>();
  private isScheduled = false;
  private isPrinting = false;
  private expected = -1; // the scroll position that was set here

  constructor(readonly pane: HTMLElement, private readonly rowHeight: () => number,
    private readonly draw: (index: number) => HTMLElement,
    private readonly whenDrawn = (_first: number, _last: number): void => {}) {
    this.spacer.className = 'spacer';
    this.rows.className = 'rows';
    for (const element of [this.spacer, this.rows]) element.setAttribute('role', 'presentation');
    pane.append(this.spacer, this.rows);
    pane.addEventListener('scroll', () => {
      if (Math.abs(pane.scrollTop - this.expected) > 1) this.top = pane.scrollTop * this.scale;
      this.expected = -1;
      this.schedule();
    }, {passive: true});
    // Where a pixel of the scroll bar represents many of the list, the wheel must not move by scroll bar pixels.
    pane.addEventListener('wheel', (event) => {
      if (this.scale === 1 || event.ctrlKey) return;
      event.preventDefault();
      this.scrollTo(this.top + event.deltaY * (event.deltaMode === 1 ? this.rowHeight() : 1));
    }, {passive: false});
    new ResizeObserver(() => this.schedule()).observe(pane);
    window.addEventListener('beforeprint', () => { this.isPrinting = true; this.render(); });
    window.addEventListener('afterprint', () => { this.isPrinting = false; this.redraw(); });
  }

  setCount(count: number): void {
    this.count = count;
    this.redraw();
  }

  // Draws all rows again.
  redraw(): void {
    this.made.clear();
    this.schedule();
  }

  get first(): number { return Math.floor(this.top / this.rowHeight()); }
  get visible(): number { return Math.max(1, Math.floor(this.pane.clientHeight / this.rowHeight())); }

  scrollTo(top: number): void {
    this.spacer.style.height = `${Math.min(this.total, highest)}px`;
    this.top = Math.max(0, Math.min(top, this.total - this.pane.clientHeight));
    this.expected = Math.round(this.top / this.scale);
    this.pane.scrollTop = this.expected;
    this.schedule();
  }

  // Scrolls as little as possible; from far away so that the row is in the upper third.
  reveal(index: number): void {
    const height = this.rowHeight(), view = this.pane.clientHeight, at = index * height;
    if (at >= this.top && at + height <= this.top + view) return;
    const isFar = at < this.top - view || at > this.top + 2 * view;
    this.scrollTo(isFar ? at - view / 3 : at < this.top ? at : at + height - view);
  }

  private get total(): number { return this.count * this.rowHeight(); }
  private get scale(): number {
    const view = this.pane.clientHeight;
    return this.total > highest ? (this.total - view) / (highest - view) : 1;
  }

  schedule(): void {
    if (this.isScheduled) return;
    this.isScheduled = true;
    requestAnimationFrame(() => {
      this.isScheduled = false;
      this.render();
    });
  }

  private render(): void {
    if (this.pane.clientHeight === 0 && !this.isPrinting) return;
    const height = this.rowHeight();
    this.spacer.style.height = `${Math.min(this.total, highest)}px`;
    this.top = Math.max(0, Math.min(this.top, this.total - this.pane.clientHeight));
    const first = Math.max(0, Math.min(this.first, this.count - 1));
    const last = Math.min(this.count, first + (this.isPrinting ? 1000 : this.visible + 2));
    const shown: HTMLElement[] = [];
    for (let i = first; i < last; ++i) {
      const row = this.made.get(i) ?? this.draw(i);
      this.made.set(i, row);
      shown.push(row);
    }
    for (const index of this.made.keys()) if (index < first || index >= last) this.made.delete(index);
    // Rows that stay are not touched, so that scrolling by a row costs one row.
    const wanted = new Set(shown);
    for (const row of [...this.rows.children]) if (!wanted.has(row as HTMLElement)) row.remove();
    shown.forEach((row, i) => {
      if (this.rows.children[i] !== row) this.rows.insertBefore(row, this.rows.children[i] ?? null);
    });
    this.rows.style.transform = `translateY(${this.pane.scrollTop - (this.top - first * height)}px)`;
    this.whenDrawn(first, last);
  }
}
