// Elements. Contents of a file only ever become text: nothing here takes markup.

type Child = Node | string | null | undefined | false;
type Attributes = Record<string, string | number | boolean | ((event: never) => void) | null | undefined>;

export function h<Name extends keyof HTMLElementTagNameMap>(name: Name, attributes: Attributes = {},
                                                            ...children: Child[]): HTMLElementTagNameMap[Name] {
  const element = document.createElement(name);
  for (const [attribute, value] of Object.entries(attributes)) {
    if (value === null || value === undefined || value === false) continue;
    if (typeof value === 'function') element.addEventListener(attribute, value as EventListener);
    else element.setAttribute(attribute, value === true ? '' : String(value));
  }
  append(element, ...children);
  return element;
}

export function append(parent: Element, ...children: Child[]): void {
  for (const child of children) if (child !== null && child !== undefined && child !== false) parent.append(child);
}

export function byId<Type extends HTMLElement = HTMLElement>(id: string): Type {
  return document.getElementById(id) as Type;
}

export const number = (value: number): string => value.toLocaleString('en');
export const plural = (count: number, one: string, many = `${one}s`): string =>
  `${number(count)} ${count === 1 ? one : many}`;
export const hex = (value: number, digits = 8): string => value.toString(16).padStart(digits, '0');

export function bytesText(size: number): string {
  if (size < 1000) return plural(size, 'byte');
  const units = ['kB', 'MB', 'GB'];
  let value = size / 1000, unit = 0;
  while (value >= 999.5 && unit < units.length - 1) value /= 1000, ++unit;
  return `${value < 10 ? value.toFixed(1) : Math.round(value)} ${units[unit]}`;
}

// Control characters and marks that change the direction of text are shown, not obeyed.
export const visible = (text: string): string =>
  text.replace(/[\u0000-\u001f\u007f-\u009f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff]/g, '\ufffd');

export function save(blob: Blob, name: string): void {
  const url = URL.createObjectURL(blob);
  h('a', {href: url, download: name}).click();
  window.setTimeout(() => URL.revokeObjectURL(url), 60000);
}

export function announce(text: string): void {
  const live = byId('live');
  live.textContent = '';
  window.setTimeout(() => { live.textContent = text; }, 50);
}
