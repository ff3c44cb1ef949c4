// Opens a report's index.html from file:// in Chromium through playwright-core,
// waits for the 3D view to say how loading the model went, and saves a
// screenshot of the view.
//   node report_browser.js PLAYWRIGHT_CORE_DIR CHROMIUM INDEX_HTML SCREENSHOT
// Prints one JSON line: {"model": "loaded"|"error"|null, "errors": [...],
// "images": [[src, naturalWidth], ...]} and exits 0 when it could look.
const [, , playwrightDir, chromiumPath, indexHtml, screenshot] = process.argv;
const { chromium } = require(playwrightDir);
const { pathToFileURL } = require('url');

(async () => {
  const browser = await chromium.launch({
    executablePath: chromiumPath,
    // WebGL without a GPU: SwiftShader, which Chromium only uses when asked.
    args: ['--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--no-sandbox'],
  });
  const errors = [];
  try {
    const page = await browser.newPage({ viewport: { width: 1000, height: 800 } });
    page.on('console', (m) => { if (m.type() === 'error') errors.push('console: ' + m.text()); });
    page.on('pageerror', (e) => errors.push('page: ' + e.message));
    page.on('requestfailed', (r) => errors.push('request: ' + r.url().slice(0, 200) + ': ' + r.failure().errorText));
    await page.goto(pathToFileURL(indexHtml).href);
    let model = null;
    try {
      await page.waitForFunction(() => document.body.dataset.model, null, { timeout: 120000 });
      model = await page.evaluate(() => document.body.dataset.model);
    } catch (e) {
      errors.push('the model did not load within 120 s');
    }
    // A frame or two after the load event, so the model is drawn.
    await page.waitForTimeout(1500);
    await page.locator('#model').screenshot({ path: screenshot });
    const images = await page.evaluate(() =>
      Array.from(document.images).map((i) => [i.getAttribute('src'), i.naturalWidth]));
    console.log(JSON.stringify({ model, errors, images }));
  } finally {
    await browser.close();
  }
})().catch((e) => {
  console.log(JSON.stringify({ model: null, errors: ['driver: ' + e.message], images: [] }));
  process.exit(1);
});
