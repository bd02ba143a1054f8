// Records and keywords as an administrator handles them in Chromium: add a record, find it in
// the list and in a search, edit it, delete it; filter the keywords and delete some.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';
import { startSite, launchBrowser, signInOverHttp, screenshotDir } from './harness.mjs';

let site;
let browser;
let context;
let page;
const dialogs = [];

before(async () => {
  site = await startSite({
    prepare: (dir) => {
      // Searched keywords are written by the public site; the test puts some in place.
      const rows = ['功夫熊猫', '功夫', '大话西游', '西游记', '天下无贼']
        .map((w, i) => `('${w}', ${10 * (i + 1)})`).join(',');
      execFileSync('sqlite3', [join(dir, 'data', 'ostrakan.db')],
        { input: `insert into keyword (keyword, hot) values ${rows};` });
    },
  });
  browser = await launchBrowser();
  const cookie = await signInOverHttp(site);
  context = await browser.newContext();
  const [name, value] = cookie.split('=');
  await context.addCookies([{ name, value, url: site.base }]);
  page = await context.newPage();
  page.on('dialog', async (d) => {
    dialogs.push(d.message());
    await d.accept();
  });
});

after(async () => {
  await browser?.close();
  await site?.stop();
});

async function submit(form) {
  await Promise.all([page.waitForNavigation(), page.click(`${form} input[type=submit]`)]);
}

test('a record is added, listed, found, edited and deleted', async () => {
  await page.goto(`${site.base}/admin/db_add.asp`);
  // Titles lose their blanks (and quotes, brackets ...) on the way in.
  await page.fill('input[name=title]', '功夫熊猫 第一部');
  await page.fill('textarea[name=content]', '阿宝的故事：一只熊猫学功夫。');
  await page.fill('input[name=url]', 'video.test/kungfu-panda.html');
  await page.fill('input[name=source]', '测试视频站');
  await page.fill('input[name=source_url]', 'video.test');
  await submit('form');
  assert.equal(dialogs.at(-1), '添加成功！');

  // The same address, typed with "http://", is refused.
  await page.goto(`${site.base}/admin/db_add.asp`);
  await page.fill('input[name=title]', '重复');
  await page.fill('input[name=url]', 'http://video.test/kungfu-panda.html');
  await page.fill('input[name=source]', '测试视频站');
  await page.fill('input[name=source_url]', 'video.test');
  await page.click('form input[type=submit]');
  await page.waitForURL(/db_add\.asp$/);
  assert.equal(dialogs.at(-1), '已经存在“video.test/kungfu-panda.html”这条记录！');

  await page.goto(`${site.base}/admin/db_list.asp`);
  const row = page.locator('a', { hasText: '功夫熊猫第一部' });
  assert.equal(await row.count(), 1);
  assert.match(await page.textContent('body'), /共1条记录 页次：1\/1页/);
  await page.screenshot({ path: join(screenshotDir, 'db_list.png'), fullPage: true });

  await page.goto(`${site.base}/admin/db_search.asp`);
  await page.fill('input[name=keyword]', '熊猫');
  await page.selectOption('select[name=action]', 'title');
  await submit('form[action*=db_search]');
  assert.equal(await page.locator('a', { hasText: '功夫熊猫第一部' }).count(), 1);
  await page.screenshot({ path: join(screenshotDir, 'db_search.png'), fullPage: true });

  // Edit from the search results; the description keeps its Chinese text.
  await Promise.all([page.waitForNavigation(), page.click('text=修改')]);
  assert.equal(await page.inputValue('textarea[name=content]'), '阿宝的故事：一只熊猫学功夫。');
  await page.screenshot({ path: join(screenshotDir, 'db_edit.png'), fullPage: true });
  await page.fill('input[name=title]', '功夫熊猫2');
  await page.fill('textarea[name=content]', '');
  // The answer confirms and goes back to the edit form.
  const saved = page.waitForEvent('dialog');
  await page.click('form input[type=submit]');
  assert.equal((await saved).message(), '修改成功！');
  await page.waitForURL(/db_edit\.asp\?id=\d+$/);

  await page.goto(`${site.base}/admin/db_list.asp`);
  assert.equal(await page.locator('a', { hasText: '功夫熊猫2' }).count(), 1);
  await Promise.all([page.waitForNavigation(), page.click('a[href^="javascript:db_delete("]')]);
  assert.equal(dialogs.at(-1), '删除成功！');
  assert.equal(await page.locator('a', { hasText: '功夫熊猫' }).count(), 0);
});

test('keywords are filtered and deleted one by one and in a batch', async () => {
  await page.goto(`${site.base}/admin/keyword_manage.asp`);
  assert.match(await page.textContent('body'), /共5个关键词/);
  await page.fill('input[name=keyword]', '功夫');
  await submit('form[action*=keyword_manage]');
  const words = await page.locator('b').allTextContents();
  assert.deepEqual(words.filter((w) => w.includes('功夫')).sort(), ['功夫', '功夫熊猫']);
  assert.match(await page.textContent('body'), /共2个关键词/);
  await page.screenshot({ path: join(screenshotDir, 'keyword_manage.png'), fullPage: true });

  // A single delete returns to the filtered list.
  await Promise.all([page.waitForNavigation(), page.click('a[href^="javascript:keyword_delete("]')]);
  assert.equal(dialogs.at(-1), '删除成功！');
  assert.match(page.url(), /keyword_manage\.asp\?keyword=%B9%A6%B7%F2&page=1$/);
  assert.match(await page.textContent('body'), /共1个关键词/);

  // Batch delete of everything that is left in the unfiltered list.
  await page.goto(`${site.base}/admin/keyword_manage.asp`);
  const boxes = page.locator('input[type=checkbox][name=id]');
  for (let i = 0; i < (await boxes.count()); i++) await boxes.nth(i).check();
  await Promise.all([page.waitForNavigation(), page.click('form[action*=keyword_ok] input[type=submit]')]);
  assert.equal(dialogs.at(-1), '删除成功！');
  assert.equal(await page.locator('input[type=checkbox][name=id]').count(), 0);
});
