import {useEffect, useReducer} from "preact/hooks";

/** A value that components follow. */
export class Store<T> {
  #value: T;
  readonly #listeners = new Set<() => void>();

  constructor(initial: T) {
    this.#value = initial;
  }

  get value(): T {
    return this.#value;
  }

  set(value: T): void {
    if (Object.is(value, this.#value)) return;
    this.#value = value;
    for (const listener of [...this.#listeners]) listener();
  }

  subscribe(listener: () => void): () => void {
    this.#listeners.add(listener);
    return () => this.#listeners.delete(listener);
  }
}

/**
 * What `read` gives, now and after each change. `follow` begins to listen, and returns what ends that; it begins anew when
 * one of `dependencies` changes.
 */
export function useFollowed<T>(
  read: () => T,
  follow: (draw: () => void) => (() => void) | undefined,
  dependencies: readonly unknown[],
): T {
  const [, draw] = useReducer<number, void>(count => count + 1, 0);
  const drawn = read();
  useEffect(() => {
    const end = follow(() => draw());
    if (!Object.is(read(), drawn)) draw(); // it has changed between the drawing and this, which comes later
    return end;
  }, dependencies);
  return drawn;
}

/** The value of the store, now and after each change. */
export const useStore = <T>(store: Store<T>): T =>
  useFollowed(
    () => store.value,
    draw => store.subscribe(draw),
    [store],
  );
