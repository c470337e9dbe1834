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

/** The value of the store, now and after each change. */
export function useStore<T>(store: Store<T>): T {
  const [, draw] = useReducer<number, void>(count => count + 1, 0);
  const drawn = store.value;
  useEffect(() => {
    if (!Object.is(store.value, drawn)) draw(); // it has changed before this, which comes after the drawing
    return store.subscribe(() => draw());
  }, [store]);
  return drawn;
}
