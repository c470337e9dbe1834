import {useEffect, useRef} from "preact/hooks";
import uPlot from "uplot";

import {useStore} from "../model/store.ts";
import {themeShown} from "./theme.ts";

export interface Line {
  title: string;
  /** A custom property of the style sheet that holds its colour. */
  colour: string;
}

interface Properties {
  lines: readonly Line[];
  /** Seconds since 1970, then the values of each line; null where nothing is known. */
  data: uPlot.AlignedData;
  format: (value: number) => string;
  label: string;
  /** Limits of the y axis, else those of the data. */
  range?: [number, number];
  height?: number;
}

const colourOf = (name: string) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

const time = (seconds: number) => new Date(seconds * 1000).toLocaleTimeString("en-GB");
/** At least so many s are shown, so that the first readings do not fill the width. */
const shortest = 60;

/** Lines over time. */
export function Chart({lines, data, format, label, range, height = 160}: Properties) {
  const place = useRef<HTMLDivElement>(null);
  const limits = useRef(range);
  limits.current = range;
  const plot = useRef<uPlot | undefined>(undefined);
  const theme = useStore(themeShown);
  useEffect(() => {
    const element = place.current!;
    const axis = {
      stroke: colourOf("--muted"),
      grid: {stroke: colourOf("--line"), width: 1},
      ticks: {show: false},
      font: "11px system-ui, sans-serif",
    };
    plot.current = new uPlot(
      {
        width: element.clientWidth,
        height,
        series: [
          {label: "", value: (_, at) => (at == null ? "" : time(at))},
          ...lines.map(({title, colour}) => ({
            label: title,
            stroke: colourOf(colour),
            width: 1.5,
            points: {show: false},
            value: (_: uPlot, value: number | null) => (value == null ? "–" : format(value)),
          })),
        ],
        axes: [
          {...axis, space: 70, size: 24, values: (_, ticks) => ticks.map(time)},
          {...axis, size: 76, values: (_, ticks) => ticks.map(format)},
        ],
        scales: {
          x: {
            range: (_, low, high) => [
              Math.min(low ?? Date.now() / 1000, (high ?? Date.now() / 1000) - shortest),
              high ?? Date.now() / 1000,
            ],
          },
          y: {
            // Asked for with each new data, when the limits may be others.
            range: (_, low, high) => limits.current ?? [Math.min(0, low ?? 0), Math.max(high ?? 0, 1) * 1.05],
          },
        },
        cursor: {points: {size: 6}},
      },
      data,
      element,
    );
    const observer = new ResizeObserver(() => plot.current?.setSize({width: element.clientWidth, height}));
    observer.observe(element);
    return () => {
      observer.disconnect();
      plot.current?.destroy();
    };
  }, [theme, lines.map(({title}) => title).join()]);
  useEffect(() => plot.current?.setData(data), [data]);
  return <div class="chart" ref={place} role="img" aria-label={label} />;
}
