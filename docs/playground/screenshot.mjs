// Shows the page as the README does: node screenshot.mjs FILE, beside playground.html.
import { chromium } from "playwright-core";

const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
const page = await browser.newPage({ viewport: { width: 1200, height: 600 } });
await page.goto(new URL("playground.html", import.meta.url).href);
await page.waitForFunction(() => document.querySelectorAll("#findings li").length > 0);
await page.screenshot({ path: process.argv[2] });
await browser.close();
