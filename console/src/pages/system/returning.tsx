import {useEffect, useRef, useState} from "preact/hooks";

import {useSystem} from "../../gateway/device.ts";
import {duration} from "../../model/format.ts";

/** Waits for an OLT that was told to reboot: it has to go away first. */
export function Returning({since, onBack}: {since: number; onBack: () => void}) {
  const {error, at} = useSystem();
  const wasAway = useRef(false);
  const [now, setNow] = useState(since);
  useEffect(() => {
    const timer = setInterval(() => setNow(Date.now()), 1000);
    return () => clearInterval(timer);
  }, []);
  if (error) wasAway.current = true;
  const isBack = wasAway.current && !error && at > since;
  useEffect(() => {
    if (isBack) onBack();
  }, [isBack]);
  return (
    <div class="returning" role="status">
      <span>
        <strong>{wasAway.current ? "The OLT is starting" : "The OLT is going down"}</strong>
        <small class="muted">for {duration((now - since) / 1000)}</small>
      </span>
      <progress aria-label="Waiting for the OLT" />
    </div>
  );
}
