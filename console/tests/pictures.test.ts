import {mkdirSync} from "node:fs";
import path from "node:path";
import {test} from "node:test";

import {closeBrowser, logIn, openWindow, visit} from "./browser.ts";
import {Olt} from "./olt.ts";

/** Where the pictures go; without it none are taken. */
const folder = process.env["OLT_PICTURES"];

const pages: readonly (readonly [name: string, place: string, shows: string])[] = [
  ["overview", "/", ".attention li"],
  ["onts", "/onts", ".table-row"],
  ["onts-weak", "/onts?optics=warn&sort=rssi", ".table-row"],
  ["ont", "/onts/1/8", ".chart canvas"],
  ["unactivated", "/unactivated", ".table-row"],
  ["pending", "/configuration", ".change"],
  ["profiles", "/configuration/CommonGCfg.profiles.profiles_ont.cross_connect", ".table-row"],
  ["form", "/configuration/ZebGCfg.switch_config.front_port/1", ".field"],
  ["form-lists", "/configuration/CommonGCfg.profiles.profiles_ont.ont_template/2", ".list td"],
  ["leases", "/subscribers/leases", ".table-row"],
  ["macs", "/subscribers/macs", ".table-row"],
  ["system", "/system", ".log-files li"],
];
const widths = [
  {width: 1280, height: 800},
  {width: 390, height: 844},
];

async function leaveSomethingPending(olt: Olt): Promise<void> {
  const {page} = await openWindow();
  await logIn(page, olt);
  await visit(page, olt, "/configuration/CommonGCfg.system.ntp");
  await page.getByLabel("Min poll").fill("8");
  await page.getByRole("button", {name: "Put into candidate"}).click();
  await page.getByText("Put into the candidate.").waitFor();
  await page.context().close();
}

test("pictures", {skip: !folder}, async () => {
  const olt = await Olt.start({plant: ["--plant", "faulty"]});
  try {
    mkdirSync(folder!, {recursive: true});
    await leaveSomethingPending(olt);
    for (const viewport of widths) {
      for (const colorScheme of ["light", "dark"] as const) {
        const {page} = await openWindow({viewport, colorScheme});
        const take = (name: string) =>
          page.screenshot({path: path.join(folder!, `${name}-${viewport.width}-${colorScheme}.png`)});
        await page.goto(olt.url);
        await page.waitForSelector("[name=password]");
        await take("login");
        await logIn(page, olt);
        for (const [name, place, shows] of pages) {
          await visit(page, olt, place);
          await page.waitForSelector(shows);
          await page.waitForLoadState("networkidle", {timeout: 1500}).catch(() => undefined); // the event stream never ends
          await take(name);
        }
        await page.context().close();
      }
    }
  } finally {
    await closeBrowser();
    await olt.stop();
  }
});
