// Starts a fresh site on a free loopback port and drives Debian's Chromium against it.
import { spawn, execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, mkdirSync } from 'node:fs';
import { createServer } from 'node:net';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { chromium } from 'playwright-core';

const binary = process.env.OSTRAKAN_BINARY;
if (!binary) throw new Error('OSTRAKAN_BINARY names the ostrakan executable');

export const screenshotDir = join(process.env.OSTRAKAN_SCREENSHOTS ?? join(tmpdir(), 'ostrakan-screens'));
mkdirSync(screenshotDir, { recursive: true });

function freePort() {
  return new Promise((resolve, reject) => {
    const server = createServer();
    server.once('error', reject);
    server.listen(0, '127.0.0.1', () => {
      const { port } = server.address();
      server.close(() => resolve(port));
    });
  });
}

async function waitForServer(url, child) {
  for (let i = 0; i < 200; i++) {
    if (child.exitCode !== null) throw new Error(`server exited with ${child.exitCode}`);
    try {
      await fetch(url);
      return;
    } catch {
      await new Promise((r) => setTimeout(r, 50));
    }
  }
  throw new Error('server did not start');
}

// A new site made by `ostrakan init`, served until stop().
// `prepare(siteDir)`, when given, runs between making the site and serving it.
export async function startSite({ admin = 'admin', password = 'secret123', prepare } = {}) {
  const dir = mkdtempSync(join(tmpdir(), 'ostrakan-browser-'));
  const site = join(dir, 'site');
  execFileSync(binary, ['init', site, '--admin', admin, '--password', password]);
  if (prepare) await prepare(site);
  const port = await freePort();
  const child = spawn(binary, ['serve', '--site', site, '--listen', `127.0.0.1:${port}`], {
    stdio: ['ignore', 'ignore', 'inherit'],
  });
  const base = `http://127.0.0.1:${port}`;
  await waitForServer(`${base}/admin/index.asp`, child);
  return {
    base,
    site,
    pid: child.pid,
    async stop() {
      child.kill('SIGTERM');
      await new Promise((r) => (child.exitCode !== null ? r() : child.once('exit', r)));
      rmSync(dir, { recursive: true, force: true });
    },
  };
}

export async function launchBrowser() {
  return chromium.launch({
    executablePath: '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'],
  });
}

// Reads the four digits of a verify picture (a 40 x 10 BMP) by matching each 10 x 10 cell
// against the digit pictures of body.Fix (320 bytes each, digits 9 down to 0, rows of 32 bytes).
export function readVerifyCode(bmp, font) {
  const offset = bmp.readUInt32LE(10);
  let code = '';
  for (let j = 0; j < 4; j++) {
    let found = null;
    for (let d = 0; d <= 9 && found === null; d++) {
      let same = true;
      for (let row = 0; row < 10 && same; row++) {
        const a = bmp.subarray(offset + row * 120 + j * 30, offset + row * 120 + j * 30 + 30);
        const b = font.subarray((9 - d) * 320 + row * 32, (9 - d) * 320 + row * 32 + 30);
        same = a.equals(b);
      }
      if (same) found = d;
    }
    if (found === null) throw new Error(`cell ${j} matches no digit`);
    code += found;
  }
  return code;
}

export function fontOf(site) {
  return readFileSync(join(site, 'admin', 'inc', 'body.Fix'));
}

// Signs in over plain HTTP (load the picture, read its code, post the form) and returns the
// session cookie ("name=value") of the signed-in administrator.
export async function signInOverHttp(site, { admin = 'admin', password = 'secret123' } = {}) {
  const picture = await fetch(`${site.base}/admin/inc/code.asp`);
  let cookie = picture.headers.get('set-cookie').split(';')[0];
  const code = readVerifyCode(Buffer.from(await picture.arrayBuffer()), fontOf(site.site));
  const login = await fetch(`${site.base}/admin/login.asp`, {
    method: 'POST',
    headers: { cookie, 'content-type': 'application/x-www-form-urlencoded' },
    body: `username=${encodeURIComponent(admin)}&password=${encodeURIComponent(password)}&verifyid=${code}`,
    redirect: 'manual',
  });
  const renewed = login.headers.get('set-cookie');
  if (renewed) cookie = renewed.split(';')[0];
  const desktop = await (await fetch(`${site.base}/admin/desktop.asp`, { headers: { cookie } })).text();
  if (!desktop.includes('admin-name')) throw new Error('sign-in failed');
  return cookie;
}

// A signed-in browser on a site: its context, a first page, and every dialog of every page
// accepted and recorded in order, so a test can wait for a run's messages.
export async function signedInBrowser(site) {
  const browser = await launchBrowser();
  const cookie = await signInOverHttp(site);
  const context = await browser.newContext();
  const [name, value] = cookie.split('=');
  await context.addCookies([{ name, value, url: site.base }]);
  const dialogs = [];
  context.on('page', (p) => p.on('dialog', async (d) => {
    dialogs.push(d.message());
    await d.accept();
  }));
  const page = await context.newPage();
  async function waitForDialog(text, timeout = 30000) {
    const start = Date.now();
    while (!dialogs.includes(text)) {
      if (Date.now() - start > timeout) throw new Error(`no "${text}" dialog; got ${dialogs}`);
      await new Promise((r) => setTimeout(r, 100));
    }
  }
  return { browser, context, page, dialogs, waitForDialog };
}
