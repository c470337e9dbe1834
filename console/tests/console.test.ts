import assert from "node:assert/strict";
import {after, before, describe, test} from "node:test";

import {closeBrowser, logIn, openWindow, visit} from "./browser.ts";
import {Olt} from "./olt.ts";

after(closeBrowser);

describe("on a small OLT with one ONT that nobody configured", () => {
  let olt: Olt;
  before(async () => {
    olt = await Olt.start({plant: ["--onts", "2", "--configured", "1", "--clock-rate", "20"]});
  });
  after(() => olt.stop());

  test("an answer that comes before the page has drawn itself is not missed", async () => {
    const {page} = await openWindow();
    await page.addInitScript(() => {
      window.fetch = () => Promise.resolve(new Response('{"error": "no_session"}', {status: 401}));
    });
    await page.goto(olt.url);
    await page.waitForSelector("[name=user]");
  });

  test("a login that is wrong is refused, and a right one leads to the overview", async () => {
    const {page, faults} = await openWindow();
    await page.goto(olt.url);
    await page.fill("[name=user]", "admin");
    await page.fill("[name=password]", "wrong");
    await page.click("text=Log in");
    await page.getByRole("alert").filter({hasText: "Wrong user name or password"}).waitFor();
    await logIn(page, olt);
    await page.getByRole("heading", {name: "PON ports"}).waitFor();
    await page.waitForFunction(() => document.querySelectorAll(".pon-row").length === 16);
    await page.click("text=Log out");
    await page.waitForSelector("[name=password]");
    assert.deepEqual(faults, []);
  });

  test("an ONT is adopted in three clicks and comes online", async () => {
    const {page} = await openWindow();
    await logIn(page, olt, "operator");
    await visit(page, olt, "/unactivated");
    await page.getByRole("button", {name: "Adopt"}).first().click();
    await page.getByRole("radio", {name: "triple-play"}).click();
    await page.getByRole("button", {name: "Adopt and commit"}).click();
    await page.locator(".adopted .status", {hasText: "Operational"}).waitFor();
    await page.getByText("Every ONT that is connected is configured.").waitFor();
  });

  test("a wrong value is said beside its field", async () => {
    const {page} = await openWindow();
    await logIn(page, olt);
    await visit(page, olt, "/configuration/CommonGCfg.system.ntp");
    await page.getByLabel("Min poll").fill("99");
    await page.getByRole("button", {name: "Put into candidate"}).click();
    await page
      .locator(".field.wrong", {hasText: "Min poll"})
      .filter({hasText: "Value 99 is out of range 4 to 17"})
      .waitFor();
  });

  test("a refused commit leads to its field, and a rollback drops the changes", async () => {
    const {page} = await openWindow();
    await logIn(page, olt);
    await visit(page, olt, "/configuration/CommonGCfg.profiles.profiles_ont.ont_template/2");
    await page.getByRole("button", {name: "Remove"}).click();
    await page.getByText("Removed from the candidate.").waitFor();
    await visit(page, olt, "/configuration");
    await page.locator(".change", {hasText: "ONT template 2"}).waitFor();
    await page.getByRole("button", {name: "Commit"}).click();
    await page.locator(".refusal", {hasText: "Undefined template 2"}).getByRole("link").click();
    await page.locator(".field.wrong", {hasText: "ONT template"}).filter({hasText: "Undefined template 2"}).waitFor();
    await page.waitForFunction(() => document.activeElement?.id === "field-ont_template");
    await visit(page, olt, "/configuration");
    await page.getByRole("button", {name: "Roll back"}).click();
    await page.getByRole("dialog").getByRole("button", {name: "Roll back"}).click();
    await page.getByText("Candidate and running are the same.").waitFor();
  });

  test("a fault shows itself while one looks", async () => {
    const {page} = await openWindow();
    await logIn(page, olt);
    await visit(page, olt, "/onts/1/1");
    await page.locator(".page-head .status", {hasText: "Operational"}).waitFor();
    olt.sim("fault", "ont_los", "1/1");
    await page.locator(".page-head .status", {hasText: "Offline"}).waitFor();
    olt.sim("clear", "ont_los", "1/1");
    await page.locator(".page-head .status", {hasText: "Operational"}).waitFor();
    const states = await page.locator(".history .status").allTextContents();
    assert.ok(states.length >= 3 && states[0] === "Operational" && states.includes("Offline"), states.join());
  });

  test("who may not change is not offered to", async () => {
    const {page} = await openWindow();
    await logIn(page, olt, "viewer");
    await visit(page, olt, "/onts/1/1");
    await page.locator(".page-head .status").waitFor();
    assert.equal(await page.getByRole("button", {name: "Reboot"}).count(), 0);
    await visit(page, olt, "/configuration/CommonGCfg.hostname");
    await page.getByText("You may look, but not change.").waitFor();
    assert.ok(await page.getByRole("textbox", {name: "Hostname"}).isDisabled());
    await visit(page, olt, "/system");
    await page.getByRole("heading", {name: "Firmware"}).waitFor();
    assert.equal(await page.getByRole("heading", {name: "Commands"}).count(), 0);
  });

  test("a session that is over says why; so does one whose daemon has gone and come back", async () => {
    const {page} = await openWindow();
    await logIn(page, olt);
    await olt.killDaemon();
    await page.getByRole("alert").filter({hasText: "not running"}).waitFor();
    await olt.startDaemon();
    await page.getByText("the OLT's service was started again").waitFor();
    await logIn(page, olt);
    await olt.stopGateway();
    await olt.startGateway(["--idle-timeout", "4"]);
    await logIn(page, olt);
    await page.getByRole("alert").filter({hasText: "You will be logged out in"}).waitFor();
    await page.getByText("because nothing was done for a while").waitFor();
  });
});

test("4096 ONTs are there at once, scrolled and filtered", async () => {
  const olt = await Olt.start({plant: ["--plant", "full", "--configured", "4096"]});
  try {
    const {page, faults} = await openWindow();
    await logIn(page, olt);
    await page.locator(".totals").getByText("online").waitFor();
    await visit(page, olt, "/onts");
    await page.getByText(/^4,0\d\d of 4,0\d\d$/).waitFor();
    const table = page.getByRole("grid", {name: "ONTs"});
    assert.ok((await table.getByRole("row").count()) < 100, "only rows in sight are drawn");
    await table.locator(".table-body").focus();
    await page.keyboard.press("End");
    await table
      .getByText(/^16\/\d+$/)
      .last()
      .waitFor();
    await page.keyboard.press("/");
    await page.keyboard.type("SIMUA0030011");
    await table.getByText("3/17", {exact: true}).waitFor();
    await page.waitForFunction(() => document.querySelectorAll(".table-row").length === 1);
    await page.getByRole("columnheader", {name: "Received"}).getByRole("button").click();
    await table.locator(".table-body").focus();
    await page.keyboard.press("Home");
    await page.keyboard.press("Enter");
    await page.waitForURL(/#\/onts\/3\/17$/);
    assert.deepEqual(faults, []);
  } finally {
    await olt.stop();
  }
});
