// Signing in and out as an administrator does it in Chromium: the code read from the picture
// opens the frame set, signing out locks the guarded pages again.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { useSite, readVerifyCode, screenshot, fill } from './harness.mjs';

const fixture = useSite({ signedIn: false });

test('an administrator signs in, signs out and is locked out', async () => {
  const { site, page, dialogs, dialogAfter } = fixture;
  // The form filled with the code the page's picture shows.
  const picture = page.waitForResponse((r) => r.url().includes('inc/code.asp'));
  await page.goto(`${site.base}/admin/index.asp`);
  await fill(page, { username: 'admin', password: 'secret123', verifyid: readVerifyCode(await (await picture).body(), site) });
  await page.click('input[type=submit]');
  await page.waitForURL(/main\.asp$/);
  const desktop = page.frame({ name: 'main' });
  assert.equal((await (await desktop.waitForSelector('#admin-name')).textContent()).trim(), 'admin');
  await screenshot(page, 'desktop');

  // Signing out sends the whole window to the sign-in page; the guarded pages refuse again.
  await page.frame({ name: 'top' }).click('text=退出登录');
  await page.waitForURL(/admin\/index\.asp$/);
  const count = dialogs.length;
  await page.goto(`${site.base}/admin/desktop.asp`);
  assert.equal(await dialogAfter(count), '您目前还没有登录或登录超时！');
  await page.waitForURL(/index\.asp$/);
});
