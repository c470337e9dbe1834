import {useEffect, useReducer} from "preact/hooks";

import {timeLeft} from "../gateway/live.ts";
import {stayLoggedIn} from "../gateway/session.ts";
import {useStore} from "../model/store.ts";

/** In s before the end of the session: the countdown begins. */
const warning = 120;
/** In ms: how often the gateway hears that the user is there. */
const reportEvery = 60_000;

/** Tells the gateway that the user is there, and the user when the session is about to end. */
export function SessionWatch() {
  const left = useStore(timeLeft);
  const [, draw] = useReducer<number, void>(turn => turn + 1, 0);
  useEffect(() => {
    let reported = Date.now();
    const onActivity = () => {
      if (Date.now() - reported < reportEvery) return;
      reported = Date.now();
      void stayLoggedIn().catch(() => undefined); // a session that is over is told by its stream
    };
    const signs = ["pointerdown", "keydown", "wheel"] as const;
    for (const sign of signs) addEventListener(sign, onActivity, {passive: true});
    return () => {
      for (const sign of signs) removeEventListener(sign, onActivity);
    };
  }, []);
  const passed = left ? (Date.now() - left.at) / 1000 : 0;
  const idle = left ? Math.ceil(left.idle_left_s - passed) : Infinity;
  const absolute = left ? Math.ceil(left.left_s - passed) : Infinity;
  const seconds = Math.min(idle, absolute);
  useEffect(() => {
    if (!left) return;
    const timer = setTimeout(() => draw(), seconds <= warning ? 1000 : Math.min((seconds - warning) * 1000, 60_000));
    return () => clearTimeout(timer);
  });
  if (seconds > warning) return null;
  return (
    <p class="banner warn" role="alert">
      <span>
        You will be logged out in {Math.max(0, seconds)} s
        {absolute <= idle ? ": the session has reached its longest duration." : "."}
      </span>
      {absolute > idle && <button onClick={() => void stayLoggedIn().catch(() => undefined)}>Stay logged in</button>}
    </p>
  );
}
