// Shared setup of the browser tests: a fresh site served on a free loopback port, Debian's
// Chromium signed in to it with every dialog recorded, a fixture remote site, and the database.
import { spawn, execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, mkdirSync } from 'node:fs';
import { once } from 'node:events';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { before, after } from 'node:test';
import { chromium } from 'playwright-core';

const binary = process.env.OSTRAKAN_BINARY;
if (!binary) throw new Error('OSTRAKAN_BINARY names the ostrakan executable');

export const screenshotDir = process.env.OSTRAKAN_SCREENSHOTS ?? join(tmpdir(), 'ostrakan-screens');
mkdirSync(screenshotDir, { recursive: true });
export const screenshot = (page, name) => page.screenshot({ path: join(screenshotDir, `${name}.png`), fullPage: true });

// A new site made by `ostrakan init` (administrator admin, password secret123), served until
// stop(). `prepare(siteDir)`, when given, runs between making the site and serving it. The
// benchmarks in bench/ use it too, `program` to serve with another build.
export async function startSite({ prepare, program = binary } = {}) {
  const dir = mkdtempSync(join(tmpdir(), 'ostrakan-browser-'));
  const site = join(dir, 'site');
  execFileSync(program, ['init', site, '--password', 'secret123']);
  if (prepare) await prepare(site);
  // Served on a port the system picks; the server's first line names it once it listens.
  const child = spawn(program, ['serve', '--site', site, '--listen', '127.0.0.1:0'], {
    stdio: ['ignore', 'pipe', 'inherit'],
  });
  const [line] = await Promise.race([once(createInterface({ input: child.stdout }), 'line'),
    once(child, 'exit').then(([code]) => { throw new Error(`server did not start (${code})`); })]);
  const base = /sign in at (http:\/\/127\.0\.0\.1:\d+)/.exec(line)[1];
  return {
    base,
    site,
    pid: child.pid,  // the server's process (the benchmarks read its CPU time and memory)
    // Runs SQL on the site's database and returns what sqlite3 prints.
    sql: (statement) => execFileSync('sqlite3', [join(site, 'data', 'ostrakan.db')], { input: statement }).toString().trim(),
    async stop() {
      child.kill('SIGTERM');
      await new Promise((r) => (child.exitCode !== null ? r() : child.once('exit', r)));
      rmSync(dir, { recursive: true, force: true });
    },
  };
}

// Reads the four digits of a verify picture (a 40 x 10 BMP) by matching each 10 x 10 cell
// against the digit pictures of body.Fix (320 bytes each, digits 9 down to 0, rows of 32 bytes).
export function readVerifyCode(bmp, site) {
  const font = readFileSync(join(site.site, 'admin', 'inc', 'body.Fix'));
  const offset = bmp.readUInt32LE(10);
  let code = '';
  for (let cell = 0; cell < 4; cell++) {
    const digit = [...Array(10).keys()].find((d) => [...Array(10).keys()].every((row) =>
      bmp.subarray(offset + row * 120 + cell * 30, offset + row * 120 + cell * 30 + 30)
        .equals(font.subarray((9 - d) * 320 + row * 32, (9 - d) * 320 + row * 32 + 30))));
    if (digit === undefined) throw new Error(`cell ${cell} matches no digit`);
    code += digit;
  }
  return code;
}

// Signs in over plain HTTP (load the picture, read its code, post the form); the session
// cookie as "NAME=value".
export async function signInOverHttp(site) {
  const picture = await fetch(`${site.base}/admin/inc/code.asp`);
  const cookie = picture.headers.get('set-cookie').split(';')[0];
  const code = readVerifyCode(Buffer.from(await picture.arrayBuffer()), site);
  const login = await fetch(`${site.base}/admin/login.asp`, {
    method: 'POST',
    headers: { cookie, 'content-type': 'application/x-www-form-urlencoded' },
    body: `username=admin&password=secret123&verifyid=${code}`,
  });
  const signedIn = login.headers.get('set-cookie')?.split(';')[0];
  if (!signedIn) throw new Error('sign-in failed');
  return signedIn;
}

// A browser whose context is signed in (over plain HTTP: load the picture, read its code, post
// the form) unless `signedIn` is false, with every dialog of every page accepted and recorded.
async function openBrowser(site, { signedIn = true } = {}) {
  const browser = await chromium.launch({
    executablePath: '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'],
  });
  const context = await browser.newContext();
  if (signedIn) {
    const [name, value] = (await signInOverHttp(site)).split('=');
    await context.addCookies([{ name, value, url: site.base }]);
  }
  const dialogs = [];
  context.on('page', (p) => p.on('dialog', async (d) => {
    dialogs.push(d.message());
    await d.accept();
  }));
  const page = await context.newPage();
  // Waits until `count` more dialogs than `before` have been shown; the last of them.
  async function dialogAfter(before, count = 1, timeout = 30000) {
    for (const start = Date.now(); dialogs.length < before + count;) {
      if (Date.now() - start > timeout) throw new Error(`no dialog after ${dialogs}`);
      await new Promise((r) => setTimeout(r, 20));
    }
    return dialogs.at(-1);
  }
  // Clicks `selector` on `on` (the page unless given) and waits for the alert it brings.
  async function alertOf(selector, on = page) {
    const before = dialogs.length;
    await on.click(selector);
    return dialogAfter(before);
  }
  return { browser, context, page, dialogs, dialogAfter, alertOf };
}

// Fills the fields of `page` named by the keys of `fields`.
export async function fill(page, fields) {
  for (const [name, value] of Object.entries(fields)) await page.fill(`[name=${name}]`, value);
}

// Adds a gathering rule of `kind` ('list' or 'id') through its add form, for a UTF-8 site.
export async function addRule({ site, page, dialogs }, kind, fields) {
  await page.goto(`${site.base}/admin/gather_${kind}_web_add.asp`);
  await fill(page, fields);
  await page.selectOption('select[name=charset]', 'utf-8');
  const before = dialogs.length;
  await Promise.all([page.waitForURL(new RegExp(`gather_${kind}_web_manage\\.asp`)), page.click('input[type=submit]')]);
  if (dialogs.at(-1) !== '添加成功！' || dialogs.length === before) throw new Error(`the rule was not added: ${dialogs}`);
}

// Clicks `selector` and waits for the page it loads.
export const clickToLoad = (page, selector) => Promise.all([page.waitForLoadState('load'), page.click(selector)]);

// A fixture remote site on loopback: `answer(url)` gives [status, content type, body]; the
// addresses asked for are kept in `asked`.
async function startRemote(answer) {
  const asked = [];
  const server = createServer((req, res) => {
    asked.push(req.url);
    const [status, type, body] = answer(req.url, req.headers.host);
    res.writeHead(status, { 'content-type': type }).end(body);
  });
  await new Promise((r) => server.listen(0, '127.0.0.1', r));
  return { base: `http://127.0.0.1:${server.address().port}`, asked, close: () => new Promise((r) => server.close(r)) };
}

// Registers a test file's hooks: before its tests a fresh site (and a fixture remote site when
// `answer` is given) and a browser on it, signed in unless `signedIn` is false; all gone after.
export function useSite({ answer, signedIn = true } = {}) {
  const fixture = {};
  before(async () => {
    if (answer) fixture.remote = await startRemote(answer);
    fixture.site = await startSite();
    Object.assign(fixture, await openBrowser(fixture.site, { signedIn }));
  });
  after(async () => {
    await fixture.browser?.close();
    await fixture.site?.stop();
    await fixture.remote?.close();
  });
  return fixture;
}
