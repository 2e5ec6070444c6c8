// A worker, the requests that wait for it, and the clock that stops it: a file must never make the page wait for ever.
import type {Operation, Operations, Reply, Supported} from './protocol.js';

// The result is no longer wanted.
export class Cancelled extends Error {}
// The worker was stopped because it took too long.
export class TimedOut extends Error {}

interface Request {
  operation: Operation;
  parameters: Operations[Operation]['in'];
  resolve: (value: never) => void;
  reject: (error: Error) => void;
}

export class Engine {
  supported!: Supported;
  restarts = 0;
  private worker!: Worker;
  private readonly waiting: Request[] = [];
  private running: Request | null = null;
  private isReady = false;
  private timer = 0;
  private startedAt = 0;
  private id = 0;

  // limit(size): how many milliseconds a request for a file of that many bytes may take.
  constructor(private readonly module: WebAssembly.Module, private readonly makeWorker: () => Worker,
              private readonly limit: (size: number) => number, private readonly whenStopped: (name: string) => void) {}

  start(): Promise<void> {
    return new Promise((resolve, reject) => {
      this.isReady = false;
      const worker = this.worker = this.makeWorker();
      worker.onerror = (event) => {
        event.preventDefault();
        reject(new Error(event.message || 'the worker does not start'));
        if (this.worker === worker)
          this.fail(new Error(`the worker failed: ${event.message || 'for an unknown reason'}`));
      };
      worker.onmessage = ({data}: MessageEvent<Reply>) => {
        if (this.worker !== worker) return;
        if (this.isReady) return this.finish(data);
        if ('error' in data) return reject(new Error(data.error));
        this.supported = data.value as Supported;
        this.isReady = true;
        resolve();
        this.next();
      };
      worker.postMessage({id: 0, module: this.module});
    });
  }

  ask<Name extends Operation>(operation: Name, parameters: Operations[Name]['in']): Promise<Operations[Name]['out']> {
    return new Promise((resolve, reject) => {
      this.waiting.push({operation, parameters, resolve, reject});
      this.next();
    });
  }

  // Drops all requests. If one has been running for some time, its worker is stopped.
  cancel(): void {
    for (const request of this.waiting.splice(0)) request.reject(new Cancelled());
    if (this.running === null) return;
    this.running.reject(new Cancelled());
    if (performance.now() - this.startedAt > 300) this.restart();
  }

  // Drops the requests for one operation that were not begun.
  drop(operation: Operation): void {
    for (let i = this.waiting.length; i-- > 0;) {
      if (this.waiting[i]?.operation === operation) this.waiting.splice(i, 1)[0]?.reject(new Cancelled());
    }
  }

  private next(): void {
    if (!this.isReady || this.running !== null) return;
    const request = this.waiting.shift();
    if (!request) return;
    this.running = request;
    this.startedAt = performance.now();
    const {operation, parameters} = request;
    const other = 'other' in parameters ? parameters.other.file.size : 0;
    this.timer = window.setTimeout(() => {
      request.reject(new TimedOut(`stopped after ${((performance.now() - this.startedAt) / 1000).toFixed(1)} s`));
      this.whenStopped(parameters.name);
      this.restart();
    }, this.limit(parameters.file.size + other));
    this.worker.postMessage({id: ++this.id, operation, parameters});
  }

  private finish(reply: Reply): void {
    const request = this.running;
    if (request === null || reply.id !== this.id) return;
    window.clearTimeout(this.timer);
    this.running = null;
    if ('error' in reply) request.reject(new Error(reply.error));
    else request.resolve(reply.value as never);
    this.next();
  }

  private fail(error: Error): void {
    this.running?.reject(error);
    this.restart();
  }

  private restart(): void {
    window.clearTimeout(this.timer);
    this.worker.terminate();
    this.running = null;
    ++this.restarts;
    // A worker that fails over and over would keep the page busy.
    if (this.restarts > 10000) return;
    this.start().catch((error: Error) => {
      for (const request of this.waiting.splice(0)) request.reject(error);
    });
  }
}
