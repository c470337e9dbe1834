import {errorText, type ApiAnswer, type ApiRequest} from "../model/answers.ts";
import {Store, useFollowed} from "../model/store.ts";
import {openStream, type EndReason, type TimeLeft} from "./http.ts";

/** What is known of something that is asked for again and again. */
export interface Live<T> {
  data?: T;
  /** Why there is no newer data. */
  error?: string;
  /** When the data came, in ms. */
  at: number;
}

interface Entry {
  request: ApiRequest;
  every: number;
  live: Live<unknown>;
  /** Each with the interval that it wants. */
  readers: Map<() => void, number>;
}

/** Why nothing comes at all; "" while things do. */
export const trouble = new Store("");

const entries = new Map<string, Entry>();
let close: (() => void) | undefined;
let isOpening = false;
const keptWithoutReaders = 40;

/** What is left of the session, and when that was said, in ms. */
export const timeLeft = new Store<(TimeLeft & {at: number}) | undefined>(undefined);
let onEnd: (reason: EndReason) => void = () => undefined;
let isOver: () => Promise<boolean> = async () => false;

/** Who hears of the end of the session, and who finds out whether it is over when a stream is refused. */
export function whenSessionEnds(listener: (reason: EndReason) => void, find: () => Promise<boolean>): void {
  onEnd = listener;
  isOver = find;
}

/** In ms between attempts to get a stream. */
const patience = 3000;

async function openAgain(): Promise<void> {
  if (!(await isOver())) setTimeout(open, patience);
}

function open(): void {
  isOpening = false;
  const closeFormer = close;
  close = undefined;
  const watched = [...entries.values()].filter(entry => entry.readers.size > 0);
  if (watched.length > 0) {
    close = openStream(watched, {
      onAnswer: (index, answer) => {
        trouble.set("");
        take(watched[index]!, answer);
      },
      onTrouble: text => trouble.set(text),
      onTimeLeft: left => timeLeft.set({...left, at: Date.now()}),
      onEnd: reason => onEnd(reason),
      onRefused: () => void openAgain(),
    });
  }
  closeFormer?.(); // only now, so that the gateway keeps what both watch
}

/** Once for all components that come and go in one turn. */
function openSoon(): void {
  if (isOpening) return;
  isOpening = true;
  setTimeout(open, 0);
}

function take(entry: Entry, answer: ApiAnswer<unknown>): void {
  const failed = !answer.success || answer.errors?.length;
  entry.live = failed
    ? {...entry.live, error: answer.errors?.map(errorText).join("; ") ?? "Request could not be processed"}
    : {data: answer.data, at: Date.now()};
  for (const draw of [...entry.readers.keys()]) draw();
}

/** The last answers of what nobody looks at any more, oldest first, make room. */
function forget(): void {
  for (const [key, entry] of entries) {
    if (entries.size <= keptWithoutReaders) return;
    if (entry.readers.size === 0) entries.delete(key);
  }
}

const nothing: Live<never> = {at: 0};

/** What the request gives, now and every so many seconds; shown at once as it was when it has been seen before. */
export function useLive<T>(request: ApiRequest | undefined, every: number): Live<T> {
  const key = request && JSON.stringify(request);
  const follow = (draw: () => void) => {
    if (!request || !key) return;
    const entry = entries.get(key) ?? {request, every, live: nothing, readers: new Map()};
    entries.delete(key);
    entries.set(key, entry);
    entry.readers.set(draw, every);
    entry.every = Math.min(...entry.readers.values());
    openSoon();
    return () => {
      entry.readers.delete(draw);
      openSoon();
      forget();
    };
  };
  return useFollowed(() => ((key && entries.get(key)?.live) ?? nothing) as Live<T>, follow, [key, every]);
}

/** What is known already need not be waited for. */
export function remember(request: ApiRequest, data: unknown): void {
  entries.set(JSON.stringify(request), {request, every: Infinity, live: {data, at: Date.now()}, readers: new Map()});
}

/** After a logout: what was seen belongs to the one who saw it. */
export function forgetAll(): void {
  entries.clear();
  openSoon();
}
