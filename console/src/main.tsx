import {render} from "preact";

import {App} from "./app.tsx";
import {findSession} from "./gateway/session.ts";
import {followPlace} from "./ui/route.ts";
import {followTheme} from "./ui/theme.ts";

followTheme();
followPlace();
void findSession();
render(<App />, document.getElementById("page")!);
