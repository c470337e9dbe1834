import type {ComponentChildren} from "preact";
import {useEffect, useLayoutEffect, useRef, useState} from "preact/hooks";

export interface Column<Row> {
  id: string;
  title: ComponentChildren;
  /** Of the grid, such as "80px" or "minmax(120px, 1fr)". */
  width: string;
  cell: (row: Row) => ComponentChildren;
  isNumber?: boolean;
  canSort?: boolean;
}

export interface Sorting {
  by: string;
  descending: boolean;
}

interface Properties<Row> {
  label: string;
  rows: readonly Row[];
  keyOf: (row: Row) => string;
  columns: readonly Column<Row>[];
  sorting?: Sorting;
  onSort?: (sorting: Sorting) => void;
  onOpen?: (row: Row) => void;
  selected?: ReadonlySet<string>;
  onToggle?: (row: Row) => void;
  empty: ComponentChildren;
  /** The list in place of the grid on narrow screens: two lines a row. */
  narrow?: (row: Row) => ComponentChildren;
}

const isNarrow = matchMedia("(max-width: 760px)");
const overscan = 6;
const headHeight = 35;

/** A table of any length that draws only the rows in sight; arrow keys move, Enter opens, the space bar selects. */
export function VirtualTable<Row>(properties: Properties<Row>) {
  const {rows, columns, keyOf, sorting, onSort, onOpen, selected, onToggle, narrow} = properties;
  const body = useRef<HTMLDivElement>(null);
  const [view, setView] = useState({top: 0, height: 600});
  const [active, setActive] = useState(0);
  const [asList, setAsList] = useState(isNarrow.matches);
  const isList = asList && narrow !== undefined;
  const rowHeight = isList ? 60 : 34;
  const above = isList ? 0 : headHeight;

  useEffect(() => {
    const follow = () => setAsList(isNarrow.matches);
    isNarrow.addEventListener("change", follow);
    return () => isNarrow.removeEventListener("change", follow);
  }, []);
  useLayoutEffect(() => {
    const element = body.current!;
    const measure = () => setView({top: element.scrollTop, height: element.clientHeight});
    const observer = new ResizeObserver(measure);
    observer.observe(element);
    element.addEventListener("scroll", measure, {passive: true});
    measure();
    return () => {
      observer.disconnect();
      element.removeEventListener("scroll", measure);
    };
  }, []);

  const first = Math.max(0, Math.floor(view.top / rowHeight) - overscan);
  const last = Math.min(rows.length, Math.ceil((view.top + view.height) / rowHeight) + overscan);
  const at = Math.min(active, Math.max(0, rows.length - 1));

  const move = (to: number) => {
    const next = Math.max(0, Math.min(rows.length - 1, to));
    setActive(next);
    const element = body.current!;
    const top = next * rowHeight;
    const inSight = element.clientHeight - above;
    if (top < element.scrollTop) element.scrollTop = top;
    if (top + rowHeight > element.scrollTop + inSight) element.scrollTop = top + rowHeight - inSight;
  };
  const onKeyDown = (event: KeyboardEvent) => {
    const page = Math.max(1, Math.floor(view.height / rowHeight) - 1);
    const steps: Record<string, number> = {
      ArrowDown: 1,
      ArrowUp: -1,
      PageDown: page,
      PageUp: -page,
      Home: -rows.length,
      End: rows.length,
    };
    const row = rows[at];
    if (event.key in steps) move(at + steps[event.key]!);
    else if (event.key === "Enter" && row !== undefined && onOpen) onOpen(row);
    else if (event.key === " " && row !== undefined && onToggle) onToggle(row);
    else return;
    event.preventDefault();
  };

  const template = columns.map(({width}) => width).join(" ");
  return (
    <div
      class={`table${isList ? " as-list" : ""}`}
      role="grid"
      aria-label={properties.label}
      aria-rowcount={rows.length + 1}>
      <div
        class="table-body"
        ref={body}
        tabIndex={0}
        onKeyDown={onKeyDown}
        role="rowgroup"
        aria-activedescendant={rows[at] === undefined ? undefined : `row-${keyOf(rows[at]!)}`}>
        {!isList && (
          <div class="table-head" role="row" style={{gridTemplateColumns: template}}>
            {columns.map(column => (
              <HeadCell key={column.id} column={column} sorting={sorting} onSort={onSort} />
            ))}
          </div>
        )}
        {rows.length === 0 && <div class="empty">{properties.empty}</div>}
        <div class="table-rows" style={{height: `${rows.length * rowHeight}px`}}>
          {rows.slice(first, last).map((row, offset) => {
            const index = first + offset;
            const key = keyOf(row);
            return (
              <div
                key={key}
                id={`row-${key}`}
                role="row"
                aria-rowindex={index + 2}
                aria-selected={selected?.has(key)}
                class={`table-row${index === at ? " active" : ""}${selected?.has(key) ? " selected" : ""}${onOpen ? " opens" : ""}`}
                style={{
                  transform: `translateY(${index * rowHeight}px)`,
                  height: `${rowHeight}px`,
                  gridTemplateColumns: isList ? "" : template,
                }}
                onClick={() => {
                  setActive(index);
                  onOpen?.(row);
                }}>
                {isList
                  ? narrow(row)
                  : columns.map(column => (
                      <span key={column.id} role="gridcell" class={column.isNumber ? "number" : ""}>
                        {column.cell(row)}
                      </span>
                    ))}
              </div>
            );
          })}
        </div>
      </div>
    </div>
  );
}

function HeadCell<Row>({
  column,
  sorting,
  onSort,
}: {
  column: Column<Row>;
  sorting?: Sorting;
  onSort?: (to: Sorting) => void;
}) {
  const isSorted = sorting?.by === column.id;
  const order = isSorted ? (sorting.descending ? "descending" : "ascending") : undefined;
  const kind = column.isNumber ? "number" : "";
  if (!column.canSort || !onSort)
    return (
      <span role="columnheader" class={kind}>
        {column.title}
      </span>
    );
  return (
    <span role="columnheader" aria-sort={order} class={kind}>
      <button class="sort" onClick={() => onSort({by: column.id, descending: isSorted && !sorting.descending})}>
        {column.title}
        <i aria-hidden="true">{isSorted ? (sorting.descending ? "↓" : "↑") : ""}</i>
      </button>
    </span>
  );
}
