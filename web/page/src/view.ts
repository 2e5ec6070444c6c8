// What the views of a file share.
import type {Engine} from './engine.js';
import type {Check, Source} from './protocol.js';

export interface Entry {
  id: number;
  file: File;
  path: string;
  state: 'waiting' | 'checked' | 'stopped';
  check: Check;
  kindChosen: string; // empty: detected
}

export interface Context {
  engine: Engine;
  entry: Entry;
  source: Source;
  entries(): Entry[];
  sourceOf(entry: Entry): Source;
  isDrawable(): boolean;
  showBytes(offset: number, size: number): void;
  showRecord(path: string): void;
}

export interface View {
  // Called when the view is first seen for a file; what it returns goes into the panel.
  open(context: Context): HTMLElement;
  close(): void;
}

export const baseName = (path: string): string => path.slice(path.lastIndexOf('/') + 1);

// The name without its extension.
export const stem = (path: string): string => baseName(path).replace(/\.[^.]{1,8}$/, '') || baseName(path);
