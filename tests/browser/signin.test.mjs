// Signing in and out as an administrator does it in Chromium: a wrong code is refused, the right
// one opens the frame set, signing out locks the guarded pages again.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { useSite, readVerifyCode, screenshot } from './harness.mjs';

const fixture = useSite({ signedIn: false });

test('an administrator is refused a wrong code, signs in, signs out and is locked out', async () => {
  const { site, page, dialogs, dialogAfter } = fixture;
  // Fills the sign-in form with the code the page's picture shows, or with another one.
  async function signIn(rightCode) {
    const picture = page.waitForResponse((r) => r.url().includes('inc/code.asp'));
    await page.goto(`${site.base}/admin/index.asp`);
    const code = readVerifyCode(await (await picture).body(), site);
    await page.fill('#username', 'admin');
    await page.fill('#password', 'secret123');
    await page.fill('#verifyid', rightCode ? code : code === '0000' ? '1111' : '0000');
    await page.click('input[type=submit]');
    return code;
  }

  const shown = await signIn(false);
  assert.equal(await dialogAfter(0), `验证码错误！${shown === '0000' ? '1111' : '0000'}`);
  await page.waitForURL(/index\.asp$/);

  await signIn(true);
  await page.waitForURL(/main\.asp$/);
  await page.frame({ name: 'main' }).waitForSelector('#admin-name');
  assert.equal((await page.frame({ name: 'main' }).textContent('#admin-name')).trim(), 'admin');
  await screenshot(page, 'desktop');

  // Signing out sends the whole window to the sign-in page; the guarded pages refuse again.
  await page.frame({ name: 'top' }).click('text=退出登录');
  await page.waitForURL(/admin\/index\.asp$/);
  const count = dialogs.length;
  await page.goto(`${site.base}/admin/desktop.asp`);
  assert.equal(await dialogAfter(count), '您目前还没有登录或登录超时！');
  await page.waitForURL(/index\.asp$/);
});
