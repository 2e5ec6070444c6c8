// The picture of a file, with a lens: pan, zoom, and the parts of a sheet under the pointer.
import {announce, append, h, number, plural, visible} from './dom.js';
import {Cancelled} from './engine.js';
import {placementAt} from './placements.js';
import type {Drawn, Info, PartShapes} from './protocol.js';
import type {Context, View} from './view.js';

interface Part {
  name: string;
  width: number;
  height: number;
  quantity: number;
  shapes: number;
}

const mostShapes = 500, mostListed = 400;
const svgSpace = 'http://www.w3.org/2000/svg';

export class PictureView implements View {
  private readonly urls: string[] = [];
  private isOpen = true;

  open(context: Context): HTMLElement {
    const panel = h('div', {class: 'picture-panel'}, h('p', {class: 'wait', role: 'status'}, 'Drawing…'));
    this.draw(context, panel).catch((error: Error) => {
      if (error instanceof Cancelled) return;
      panel.replaceChildren(h('p', {class: 'note'}, `No picture: ${visible(error.message)}`));
    });
    return panel;
  }

  close(): void {
    this.isOpen = false;
    for (const url of this.urls) URL.revokeObjectURL(url);
  }

  private async draw(context: Context, panel: HTMLElement): Promise<void> {
    const drawn = await context.engine.ask('draw', context.source);
    if (!this.isOpen) return;
    const url = URL.createObjectURL(drawn.svg);
    this.urls.push(url);
    const image =
      h('img', {class: 'drawing', src: url, alt: `Picture. ${drawn.title}. ${drawn.description}`, draggable: 'false'});
    const overlay = document.createElementNS(svgSpace, 'svg');
    overlay.setAttribute('viewBox', `0 0 ${drawn.width} ${drawn.height}`);
    overlay.setAttribute('class', 'overlay');
    overlay.setAttribute('aria-hidden', 'true');
    const paper = h('div', {class: 'paper'}, image);
    paper.append(overlay);
    const hint = h('p', {class: 'hover-hint'});
    const lens = h('div', {
      class: 'lens',
      tabindex: 0,
      role: 'application',
      'aria-label': 'Picture. Plus and minus zoom, arrow keys move, 0 shows all.',
    },
      paper);
    const move = new Lens(lens, paper, drawn);
    const button = (label: string, text: string, act: () => void) =>
      h('button', {type: 'button', 'aria-label': label, title: label, click: act}, text);
    const tools = h('div', {class: 'lens-tools', role: 'group', 'aria-label': 'Zoom'},
      button('Zoom in', '+', () => move.zoom(1.4)), button('Zoom out', '−', () => move.zoom(1 / 1.4)),
      button('Show all', 'All', () => move.all()), button('Fit the width', 'Width', () => move.width()));
    const stage = h('div', {class: 'stage'}, lens, tools, hint);
    panel.replaceChildren(stage);
    await image.decode().catch(() => undefined);
    panel.dataset.drawn = 'true';
    if (drawn.placements.parts.length > 0) this.addParts(context, panel, stage, drawn, overlay, hint, move);
    move.all();
  }

  private addParts(context: Context, panel: HTMLElement, stage: HTMLElement, drawn: Drawn, overlay: SVGElement,
                   hint: HTMLElement, lens: Lens): void {
    const {placements} = drawn;
    let parts: Part[] = [];
    let picked = -1;
    const list = h('ol', {class: 'part-list', 'aria-label': 'Parts'});
    const shapes = h('div', {class: 'shape-list'});
    const heading = h('h3', {}, 'Parts');
    const side = h('aside', {class: 'parts', 'aria-label': 'Parts of the sheet'}, heading,
      h('p', {class: 'soft'}, 'Point at a part in the picture; select it to see its shapes.'), list, shapes);
    panel.append(side);
    panel.classList.add('with-parts');

    const mark = (only: number, part: number): void => {
      overlay.replaceChildren();
      let data = '';
      for (let i = 0; i < placements.parts.length; ++i) {
        if (placements.parts[i] !== part && i !== only) continue;
        const at = [...placements.corners.subarray(8 * i, 8 * i + 8)];
        data += `M${at[0]} ${at[1]}L${at[2]} ${at[3]}L${at[4]} ${at[5]}L${at[6]} ${at[7]}Z`;
      }
      if (data === '') return;
      const path = document.createElementNS(svgSpace, 'path');
      path.setAttribute('d', data);
      path.setAttribute('class', part >= 0 ? 'marked' : 'pointed');
      overlay.append(path);
    };
    const describe = (part: number): string => {
      const {name, width, height, quantity} = parts[part] ?? {name: '', width: 0, height: 0, quantity: 0};
      return `${part + 1}  ${visible(name)}  ${number(width)} × ${number(height)}, ×${number(quantity)}`;
    };
    let pointed = -1;
    const point = (placement: number): void => {
      if (placement === pointed) return;
      pointed = placement;
      const part = placement < 0 ? -1 : (placements.parts[placement] as number);
      hint.textContent = part < 0 ? '' : describe(part);
      stage.classList.toggle('over-part', part >= 0);
      mark(placement, placement < 0 ? picked : -1);
    };
    const pick = (part: number): void => {
      picked = part;
      mark(-1, part);
      for (const item of list.querySelectorAll('button')) {
        const isPicked = Number(item.dataset.part) === part;
        item.setAttribute('aria-pressed', String(isPicked));
        if (isPicked) item.scrollIntoView({block: 'nearest'});
      }
      this.listShapes(context, part, shapes).catch((error: Error) => {
        if (!(error instanceof Cancelled)) shapes.replaceChildren(h('p', {class: 'note'}, visible(error.message)));
      });
    };
    lens.whenPointed = (x, y) => point(placementAt(placements, x, y));
    lens.whenLeft = () => point(-1);
    lens.whenPicked = (x, y) => {
      const placement = placementAt(placements, x, y);
      if (placement >= 0) pick(placements.parts[placement] as number);
    };
    context.engine.ask('info', context.source).then((info: Info) => {
      parts = (info.parts as Part[] | undefined) ?? [];
      heading.textContent = plural(parts.length, 'part');
      append(list,
        ...parts.slice(0, mostListed)
          .map((part, i) => h('li', {},
                 h('button', {
                   type: 'button',
                   'data-part': i,
                   'aria-pressed': 'false',
                   click: () => pick(i),
                   mouseenter: () => mark(-1, i),
                   mouseleave: () => mark(-1, picked),
                   focus: () => mark(-1, i),
                 },
                   h('span', {class: `swatch colour-${i % 8}`}, String(i + 1)),
                   h('span', {class: 'part-name'}, visible(part.name)),
                   h('span', {class: 'soft'}, `${number(part.width)} × ${number(part.height)}`),
                   h('span', {class: 'soft'}, `×${number(part.quantity)}`)))));
      if (parts.length > mostListed) {
        list.after(h('p', {class: 'soft'},
          `and ${plural(parts.length - mostListed, 'more part')}; the picture and the summary have them`));
      }
    }, () => undefined);
  }

  private async listShapes(context: Context, part: number, into: HTMLElement): Promise<void> {
    into.replaceChildren(h('p', {class: 'wait', role: 'status'}, 'Reading the record…'));
    const found: PartShapes | null = await context.engine.ask('part', {...context.source, part, most: mostShapes});
    if (found === null) {
      into.replaceChildren(h('p', {class: 'note'}, 'The record does not have this part.'));
      return;
    }
    const {name, total, shapes} = found;
    const texts =
      shapes.map(({text}) => (typeof text === 'string' ? text : ((text as {text?: string} | null)?.text ?? '')));
    const hasTexts = texts.some((text) => text !== '');
    const rows = shapes.map(({type, x, y, values}, i) => {
      const used = [...(values ?? [])];
      while (used.length > 0 && used[used.length - 1] === 0) used.pop();
      return h('tr', {}, h('td', {}, String(i)), h('td', {}, String(type)), h('td', {}, String(x)),
        h('td', {}, String(y)),
        h('td', {}, used.map((value) => (typeof value === 'object' ? JSON.stringify(value) : String(value))).join(' ')),
        hasTexts && h('td', {}, visible(texts[i] as string)));
    });
    const path = `partList.parts[${part}]`;
    into.replaceChildren(h('h3', {}, `${part + 1}  ${visible(name)}: ${plural(total, 'shape')}`),
      h('p', {class: 'actions'},
        h('button', {type: 'button', click: () => context.showRecord(path)}, 'Show in the record')),
      total > 0 &&
          h('div', {class: 'scroll'},
            h('table', {},
              h('thead', {},
                h('tr', {},
                  ...['', 'type', 'x', 'y', 'values', ...(hasTexts ? ['text'] : [])].map(
                    (head) => h('th', {scope: 'col'}, head)))),
              h('tbody', {}, ...rows))) ||
        '',
      total > shapes.length
        ? h('p', {class: 'soft'}, `The first ${number(shapes.length)} are listed; the record has all.`)
        : '');
    announce(`Part ${part + 1}, ${visible(name)}, ${plural(total, 'shape')}`);
  }
}

// Pan and zoom by pointer, wheel, two fingers and keys.
class Lens {
  whenPointed = (_x: number, _y: number): void => {};
  whenPicked = (_x: number, _y: number): void => {};
  whenLeft = (): void => {};
  private scale = 1;
  private x = 0;
  private y = 0;
  private rest = 0;
  private isFitted = true;
  private readonly pointers = new Map<number, PointerEvent>();
  private moved = 0;

  constructor(private readonly lens: HTMLElement, private readonly paper: HTMLElement,
              private readonly picture: {width: number, height: number}) {
    paper.style.width = `${picture.width}px`;
    paper.style.height = `${picture.height}px`;
    lens.addEventListener('wheel', (event) => {
      event.preventDefault();
      const box = lens.getBoundingClientRect();
      this.zoom(Math.exp(-event.deltaY * (event.deltaMode === 1 ? 0.05 : 0.0015)), event.clientX - box.left,
        event.clientY - box.top);
    }, {passive: false});
    lens.addEventListener('pointerdown', (event) => {
      this.pointers.set(event.pointerId, event);
      this.moved = 0;
      lens.setPointerCapture(event.pointerId);
    });
    lens.addEventListener('pointermove', (event) => this.pointerMoved(event));
    lens.addEventListener('pointerleave', () => this.whenLeft());
    for (const name of ['pointerup', 'pointercancel'] as const) {
      lens.addEventListener(name, (event) => {
        if (name === 'pointerup' && this.pointers.size === 1 && this.moved < 6) this.whenPicked(...this.place(event));
        this.pointers.delete(event.pointerId);
      });
    }
    lens.addEventListener('keydown', (event) => {
      const step = 80;
      const keys: Record<string, () => void> = {
        '+': () => this.zoom(1.4), '=': () => this.zoom(1.4), '-': () => this.zoom(1 / 1.4), '0': () => this.all(),
        ArrowLeft: () => this.pan(step, 0), ArrowRight: () => this.pan(-step, 0),
        ArrowUp: () => this.pan(0, step), ArrowDown: () => this.pan(0, -step),
      };
      const act = event.ctrlKey || event.metaKey || event.altKey ? undefined : keys[event.key];
      if (!act) return;
      event.preventDefault();
      act();
    });
    new ResizeObserver(() => { if (this.isFitted) this.all(); }).observe(lens);
  }

  all(): void {
    this.fit(Math.min(this.lens.clientWidth / this.picture.width, this.lens.clientHeight / this.picture.height));
  }
  width(): void {
    this.fit(this.lens.clientWidth / this.picture.width);
    this.isFitted = false;
  }
  zoom(factor: number, x = this.lens.clientWidth / 2, y = this.lens.clientHeight / 2): void {
    const scale = Math.max(0.05, Math.min(40, this.scale * factor));
    const by = scale / this.scale;
    this.x = x - (x - this.x) * by;
    this.y = y - (y - this.y) * by;
    this.scale = scale;
    this.isFitted = false;
    this.apply();
  }
  private pan(x: number, y: number): void {
    this.x += x;
    this.y += y;
    this.isFitted = false;
    this.apply();
  }
  private fit(scale: number): void {
    if (!(scale > 0)) return;
    this.scale = scale;
    this.x = Math.max(0, (this.lens.clientWidth - this.picture.width * scale) / 2);
    this.y = 0;
    this.isFitted = true;
    this.apply();
  }
  private apply(): void {
    // Part of the picture stays in view.
    const {clientWidth: width, clientHeight: height} = this.lens, least = 60;
    this.x = Math.min(width - least, Math.max(least - this.picture.width * this.scale, this.x));
    this.y = Math.min(height - least, Math.max(least - this.picture.height * this.scale, this.y));
    this.paper.style.transform = `translate(${this.x}px, ${this.y}px) scale(${this.scale})`;
    // While it moves the picture is one layer that is only scaled; at rest it is drawn sharply.
    this.paper.classList.add('moving');
    window.clearTimeout(this.rest);
    this.rest = window.setTimeout(() => this.paper.classList.remove('moving'), 160);
  }
  private place(event: PointerEvent): [number, number] {
    const box = this.lens.getBoundingClientRect();
    return [(event.clientX - box.left - this.x) / this.scale, (event.clientY - box.top - this.y) / this.scale];
  }
  private pointerMoved(event: PointerEvent): void {
    const before = this.pointers.get(event.pointerId);
    if (!before) {
      this.whenPointed(...this.place(event));
      return;
    }
    const dx = event.clientX - before.clientX, dy = event.clientY - before.clientY;
    this.moved += Math.hypot(dx, dy);
    if (this.pointers.size === 2) {
      const other = [...this.pointers.values()].find((one) => one.pointerId !== event.pointerId) as PointerEvent;
      const apart = (one: PointerEvent) => Math.hypot(one.clientX - other.clientX, one.clientY - other.clientY) || 1;
      const box = this.lens.getBoundingClientRect();
      this.pan(dx / 2, dy / 2);
      this.zoom(apart(event) / apart(before), (event.clientX + other.clientX) / 2 - box.left,
                (event.clientY + other.clientY) / 2 - box.top);
    } else {
      this.pan(dx, dy);
    }
    this.pointers.set(event.pointerId, event);
  }
}
