// Checks glTF files and the page examples/web for scripts/web-checks.sh; run it in a folder with the npm packages.
//   node web-checks.mjs SITE FIGURES PRESET ...
// SITE is a copy of examples/web with its packages. FIGURES has for each preset N.glb, N.png and N-rotated.png, which
// is the curve of N.png as it is after a drag of `drag` pixels to the right. Writes screenshots of the page to FIGURES.
// Exits with status 1 if the glTF validator reports anything, or if the page does not show the PNG pictures.
import { once } from 'node:events';
import { copyFileSync, readFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { createRequire } from 'node:module';
import { extname } from 'node:path';

const require = createRequire(`${process.cwd()}/`);
const validator = require('gltf-validator');
const { chromium } = require('playwright-core');
const { PNG } = require('pngjs');

const [site, figures, ...presets] = process.argv.slice(2);
const drag = 60; // OrbitControls rotates by a full turn per height of the page: by 30 degrees for 720 pixels
const required = 95; // percent

let failed = false;
function check(passed, text) {
  console.log(`${passed ? 'passed' : 'FAILED'}: ${text}`);
  failed ||= !passed;
}

/// Checks that the validator reports no issue of any severity for the file.
async function validate(path) {
  const { issues, info } = await validator.validateBytes(new Uint8Array(readFileSync(path)), { maxIssues: 0 });
  const { numErrors, numWarnings, numInfos, numHints, messages } = issues;
  check(
    numErrors + numWarnings + numInfos + numHints === 0,
    `${path}: ${numErrors} errors, ${numWarnings} warnings, ${numInfos} infos, ${numHints} hints; ` +
      `${info?.totalVertexCount ?? 'no'} vertices`,
  );
  for (const { code, message, pointer } of messages.slice(0, 5))
    console.log(`  ${code}: ${message} ${pointer ?? ''}`);
}

/// Returns the brightness of the pixel at index `i`, its greatest channel, 0 to 255.
const brightness = ({ data }, i) => Math.max(data[4 * i], data[4 * i + 1], data[4 * i + 2]);

/// Returns whether two pixels have the same hue and saturation, to 0.2 in each channel relative to the greatest one:
/// antialiasing on black only darkens a colour.
function alike(a, i, b, j) {
  const scaleA = 1 / brightness(a, i);
  const scaleB = 1 / brightness(b, j);
  return [0, 1, 2].every((c) => Math.abs(a.data[4 * i + c] * scaleA - b.data[4 * j + c] * scaleB) <= 0.2);
}

/// Returns how many percent of the bright pixels of picture `a` have a coloured pixel of a like colour within 2 pixels
/// in picture `b`, and 0 if `a` has no bright pixel.
function found(a, b) {
  const { width, height } = a;
  let bright = 0;
  let matching = 0;
  for (let i = 0; i < width * height; i += 1) {
    if (brightness(a, i) < 128)
      continue;
    bright += 1;
    const x = i % width;
    const y = Math.floor(i / width);
    let match = false;
    for (let v = Math.max(y - 2, 0); v <= Math.min(y + 2, height - 1) && !match; v += 1) {
      for (let u = Math.max(x - 2, 0); u <= Math.min(x + 2, width - 1) && !match; u += 1) {
        const j = v * width + u;
        match = brightness(b, j) >= 48 && alike(a, i, b, j);
      }
    }
    matching += match;
  }
  return bright > 0 ? (100 * matching) / bright : 0;
}

/// Returns the match of two pictures of the same size in percent, and its text.
function compare(expected, shown) {
  const ways = [found(expected, shown), found(shown, expected)];
  return [Math.min(...ways), ways.map((way) => `${way.toFixed(1)} %`).join(' and ')];
}

/// Returns the picture that the page shows as soon as it is not black. Throws if the page reports an error, or stays
/// black for 30 s.
async function screenshot(page, path) {
  for (const deadline = Date.now() + 30000; Date.now() < deadline; ) {
    const message = await page.innerText('body');
    if (message)
      throw new Error(message);
    const picture = PNG.sync.read(await page.screenshot({ path }));
    for (let i = 0; i < picture.width * picture.height; i += 1) {
      if (brightness(picture, i) > 0)
        return picture;
    }
  }
  throw new Error('the page stays black');
}

/// Checks that the page shows the curve of the PNG picture, before and after a drag.
async function show(browser, address, preset) {
  const file = (name) => `${figures}/${preset}${name}`;
  const [expected, rotated] = ['.png', '-rotated.png'].map((name) => PNG.sync.read(readFileSync(file(name))));
  copyFileSync(file('.glb'), `${site}/curve.glb`);
  const { width, height } = expected;
  const page = await browser.newPage({ viewport: { width, height } });
  const errors = [];
  page.on('pageerror', (error) => errors.push(error.message));
  try {
    await page.goto(address);
    const before = await screenshot(page, file('-page.png'));
    const [match, text] = compare(expected, before);
    check(match >= required, `preset ${preset}: ${text} of the bright pixels match the PNG picture`);

    // Fails if the comparison accepts any two pictures.
    const [control, controlText] = compare(rotated, before);
    check(control < required, `preset ${preset}: ${controlText} match the rotated PNG picture before the drag`);

    await page.mouse.move(width / 2, height / 2);
    await page.mouse.down();
    await page.mouse.move(width / 2 + drag, height / 2, { steps: 6 });
    await page.mouse.up();
    await page.evaluate(() => new Promise((drawn) => requestAnimationFrame(() => requestAnimationFrame(drawn))));
    const [turnedMatch, turnedText] = compare(rotated, await screenshot(page, file('-page-rotated.png')));
    check(turnedMatch >= required, `preset ${preset}: ${turnedText} match the rotated PNG picture after the drag`);
  } catch (error) {
    errors.push(error.message);
  }
  if (errors.length > 0)
    check(false, `preset ${preset}: ${errors.join('; ')}`);
  await page.close();
}

/// Answers a request for a file of SITE.
function serve({ url }, response) {
  const path = url === '/' ? '/index.html' : url;
  const types = { '.html': 'text/html', '.js': 'text/javascript' };
  try {
    const content = readFileSync(`${site}${path}`);
    response.writeHead(200, { 'Content-Type': types[extname(path)] ?? 'application/octet-stream' }).end(content);
  } catch {
    response.writeHead(404).end();
  }
}

for (const preset of presets)
  await validate(`${figures}/${preset}.glb`);

const browser = await chromium.launch({
  executablePath: '/usr/bin/chromium',
  chromiumSandbox: process.getuid() !== 0, // Chromium refuses to run as root with its sandbox
  args: ['--use-angle=swiftshader', '--enable-unsafe-swiftshader'],
});
const server = createServer(serve);
try {
  server.listen(0, '127.0.0.1');
  await once(server, 'listening');
  const address = `http://127.0.0.1:${server.address().port}/`;
  for (const preset of presets)
    await show(browser, address, preset);
} finally {
  await browser.close();
  server.close();
}
process.exitCode = failed ? 1 : 0;
