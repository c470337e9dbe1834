import {useState} from "preact/hooks";

import {begin, farewell} from "../gateway/session.ts";
import {useStore} from "../model/store.ts";

export function Login() {
  const why = useStore(farewell);
  const [failure, setFailure] = useState("");
  const [isBusy, setBusy] = useState(false);
  const submit = async (event: SubmitEvent) => {
    event.preventDefault();
    const form = new FormData(event.currentTarget as HTMLFormElement);
    setBusy(true);
    try {
      await begin(String(form.get("user")), String(form.get("password")));
    } catch (error) {
      setFailure((error as Error).message);
      setBusy(false);
    }
  };
  return (
    <main class="login">
      <form onSubmit={submit}>
        <div class="brand">
          <img src="/icon.svg" alt="" />
          <h1>OLT console</h1>
        </div>
        {why && !failure && (
          <p class="text-warn" role="status">
            {why}
          </p>
        )}
        <label>
          User
          <input name="user" autocomplete="username" required autofocus spellcheck={false} autocapitalize="none" />
        </label>
        <label>
          Password
          <input name="password" type="password" autocomplete="current-password" required />
        </label>
        {failure && (
          <p class="failure" role="alert">
            {failure}
          </p>
        )}
        <button class="primary" disabled={isBusy}>
          {isBusy ? "Logging in…" : "Log in"}
        </button>
      </form>
    </main>
  );
}
