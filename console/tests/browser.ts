import {chromium, type Browser, type BrowserContextOptions, type Page} from "playwright-core";

import type {Olt} from "./olt.ts";

/** How long anything on a page may take; what is waited for comes earlier. */
const patience = 20_000;

let browser: Browser | undefined;

/** A window of a browser with nothing kept from before. Faults of the page's own script fail the test that looks at them. */
export async function openWindow(options: BrowserContextOptions = {}): Promise<{page: Page; faults: string[]}> {
  // As root, as in a container, Chromium runs without its sandbox only.
  browser ??= await chromium.launch({
    executablePath: process.env["CHROMIUM"] ?? "/usr/bin/chromium",
    args: process.getuid?.() === 0 ? ["--no-sandbox"] : [],
  });
  const context = await browser.newContext({viewport: {width: 1280, height: 800}, ...options});
  const page = await context.newPage();
  page.setDefaultTimeout(patience);
  const faults: string[] = [];
  page.on("pageerror", error => faults.push(String(error)));
  page.on("console", message => {
    if (/Content Security Policy/.test(message.text())) faults.push(message.text());
  });
  return {page, faults};
}

export async function closeBrowser(): Promise<void> {
  await browser?.close();
  browser = undefined;
}

/** Each demo user's password is its name. */
export async function logIn(page: Page, olt: Olt, user = "admin"): Promise<void> {
  await page.goto(olt.url);
  await page.fill("[name=user]", user);
  await page.fill("[name=password]", user);
  await page.click("text=Log in");
  await page.waitForSelector(".shell");
}

/** Goes to a place of the page, such as "/onts". */
export async function visit(page: Page, olt: Olt, place: string): Promise<void> {
  await page.goto(`${olt.url}/#${place}`);
}
