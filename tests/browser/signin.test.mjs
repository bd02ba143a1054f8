// The whole sign-in flow as an administrator meets it in Chromium.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { startSite, launchBrowser, readVerifyCode, fontOf, screenshotDir } from './harness.mjs';

let site;
let browser;

before(async () => {
  site = await startSite();
  browser = await launchBrowser();
});

after(async () => {
  await browser?.close();
  await site?.stop();
});

// Opens the sign-in page and returns the code shown by the picture it loaded.
async function openSignIn(page) {
  const picture = page.waitForResponse((r) => r.url().includes('inc/code.asp'));
  await page.goto(`${site.base}/admin/index.asp`);
  const response = await picture;
  assert.equal(response.headers()['content-type'], 'image/BMP');
  const body = await response.body();
  assert.equal(body.length, 54 + 1200);
  await page.waitForFunction(() => document.getElementById('verifyImage').naturalWidth === 40);
  return readVerifyCode(body, fontOf(site.site));
}

async function signIn(page, name, password) {
  const code = await openSignIn(page);
  await page.fill('#username', name);
  await page.fill('#password', password);
  await page.fill('#verifyid', code);
  await Promise.all([page.waitForURL(/main\.asp$/), page.click('input[type=submit]')]);
}

function frame(page, name) {
  return page.frames().find((f) => f.name() === name);
}

test('an administrator signs in, changes the account, signs out and is locked out', async () => {
  const context = await browser.newContext();
  const page = await context.newPage();
  const dialogs = [];
  page.on('dialog', async (d) => {
    dialogs.push(d.message());
    await d.accept();
  });

  // A wrong code is refused with the typed code repeated, and the page goes back.
  const shown = await openSignIn(page);
  const wrong = shown === '0000' ? '1111' : '0000';
  await page.fill('#username', 'admin');
  await page.fill('#password', 'secret123');
  await page.fill('#verifyid', wrong);
  await page.click('input[type=submit]');
  await page.waitForURL(/index\.asp$/);
  assert.ok(dialogs.includes(`验证码错误！${wrong}`), dialogs.join(' | '));

  await signIn(page, 'admin', 'secret123');
  const main = frame(page, 'main');
  await main.waitForSelector('#admin-name');
  assert.equal((await main.textContent('#admin-name')).trim(), 'admin');
  assert.equal((await main.textContent('#last-ip')).trim(), '');  // the first sign-in
  await page.screenshot({ path: join(screenshotDir, 'desktop.png') });

  // A second sign-in shows the address and time of the first.
  await signIn(page, 'admin', 'secret123');
  const again = frame(page, 'main');
  await again.waitForSelector('#last-ip');
  assert.equal((await again.textContent('#last-ip')).trim(), '127.0.0.1');
  assert.match((await again.textContent('#last-time')).trim(), /^\d{4}-\d{1,2}-\d{1,2} \d{1,2}:\d{2}:\d{2}$/);

  // The account page shows the name and stores a new name and password.
  const left = frame(page, 'left');
  await left.click('text=帐号设置');
  await page.waitForTimeout(100);
  const account = frame(page, 'main');
  await account.waitForSelector('#username');
  assert.equal(await account.inputValue('#username'), 'admin');
  await account.fill('#username', '站长');
  await account.fill('#password', 'better456');
  await account.fill('#password2', 'better456');
  await Promise.all([account.waitForNavigation(), account.click('input[type=submit]')]);
  assert.ok(dialogs.includes('修改成功！'), dialogs.join(' | '));
  await page.screenshot({ path: join(screenshotDir, 'account.png') });

  // Signing out sends the whole window to the sign-in page.
  await frame(page, 'top').click('text=退出登录');
  await page.waitForURL(/admin\/index\.asp$/);

  // Afterwards a guarded page answers with the guard's alert only.
  dialogs.length = 0;
  const answer = await page.request.get(`${site.base}/admin/desktop.asp`);
  assert.equal((await answer.text()).includes('admin-name'), false);
  await page.goto(`${site.base}/admin/desktop.asp`);
  await page.waitForURL(/index\.asp$/);
  assert.deepEqual(dialogs, ['您目前还没有登录或登录超时！']);

  // The new name and password work; the old ones do not.
  dialogs.length = 0;
  await openSignIn(page).then(async (code) => {
    await page.fill('#username', 'admin');
    await page.fill('#password', 'secret123');
    await page.fill('#verifyid', code);
    await page.click('input[type=submit]');
    await page.waitForURL(/index\.asp$/);
  });
  assert.deepEqual(dialogs, ['管理帐号错误！']);
  await signIn(page, '站长', 'better456');
  const renamed = frame(page, 'main');
  await renamed.waitForSelector('#admin-name');
  assert.equal((await renamed.textContent('#admin-name')).trim(), '站长');
  await context.close();
});

test('the sign-in page renders its Chinese text and a legible picture', async () => {
  const context = await browser.newContext();
  const page = await context.newPage();
  const code = await openSignIn(page);
  assert.match(code, /^\d{4}$/);
  assert.equal(await page.textContent('h2'), '管理后台登录');
  await page.screenshot({ path: join(screenshotDir, 'signin.png') });
  // Clicking the picture loads a new one.
  const next = page.waitForResponse((r) => r.url().includes('inc/code.asp'));
  await page.click('#verifyImage');
  assert.equal((await next).status(), 200);
  await context.close();
});
