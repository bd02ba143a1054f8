// Categories and the front end as an administrator builds them in Chromium: two top-level
// categories and some sub-categories (one batch), a whole-site rebuild from create_all, a
// generated page read through the engine, and a visitor's click through goto.asp.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';
import { startSite, launchBrowser, signInOverHttp, screenshotDir } from './harness.mjs';

let site;
let browser;
let page;
const dialogs = [];

const sql = (statement) =>
  execFileSync('sqlite3', [join(site.site, 'data', 'ostrakan.db')], { input: statement }).toString().trim();

before(async () => {
  site = await startSite();
  browser = await launchBrowser();
  const cookie = await signInOverHttp(site);
  const context = await browser.newContext();
  const [name, value] = cookie.split('=');
  await context.addCookies([{ name, value, url: site.base }]);
  page = await context.newPage();
  context.on('dialog', async (d) => {
    dialogs.push(d.message());
    await d.accept();
  });
});

after(async () => {
  await browser?.close();
  await site?.stop();
});

// Runs an action whose answer is an alert followed by location.replace(to), after `count`
// dialogs in all; returns the last one.
async function answered(action, to, count = 1) {
  const before = dialogs.length;
  await action();
  while (dialogs.length < before + count) await new Promise((r) => setTimeout(r, 20));
  await page.waitForURL(to);
  return dialogs.at(-1);
}
const submit = (form) => () => page.click(`${form} input[type=submit]`);

test('categories are built, the site generated, and a record followed through goto.asp', async () => {
  await page.goto(`${site.base}/admin/sort_manage.asp`);
  for (const name of ['电影', '电视', '临时']) {
    await page.fill('form[name=add] input[name=sort]', name);
    assert.equal(await answered(submit('form[name=add]'), /sort_manage\.asp$/), '添加成功！');
  }
  // A delete asks first, then goes.
  await answered(() => page.click('a[href="javascript:sort_delete(3)"]'), /sort_manage\.asp$/, 2);
  assert.deepEqual(dialogs.slice(-2), ['确定要删除这个分类吗？它下面的二级分类也会一起删除。', '删除成功！']);
  assert.equal(await page.locator('input[type=checkbox][name=id]').count(), 2);

  await Promise.all([page.waitForNavigation(), page.click('a:text("电影")')]);
  await page.fill('form[name=add] input[name=sort]', '功夫');
  await page.selectOption('form[name=add] select[name=alphabetical_id]', { label: 'G' });
  assert.equal(await answered(submit('form[name=add]'), /sort_list\.asp/), '添加成功！');

  await Promise.all([page.waitForNavigation(), page.click('a:text("批量添加")')]);
  assert.match(await page.textContent('body'), /添加位置：\s*电影/);
  await page.selectOption('select[name=alphabetical_id]', { label: 'D' });
  await page.fill('textarea[name=sort_list]', '动作 片\n冒险');
  assert.equal(await answered(submit('form[name=batch]'), /sort_list\.asp/), '批量添加成功！');
  const groupD = await page.locator('tr', { has: page.locator('b:text-is("D")') }).textContent();
  assert.match(groupD, /动作 片/);
  await page.screenshot({ path: join(screenshotDir, 'sort_list.png'), fullPage: true });

  // Records whose titles name the sub-category; the address leads back to this site.
  const target = `${site.base.replace('http://', '')}/admin/index.asp`;
  sql(`insert into db (title, content, url, click) values ('功夫熊猫', '熊猫学功夫', '${target}', 7),
       ('功夫足球', '足球', 'v.test/soccer', 2), ('喜剧之王', '喜剧', 'v.test/king', 9);`);
  const kungfu = sql("select id from sort where sort='功夫'");

  await page.goto(`${site.base}/admin/create_all.asp`);
  await Promise.all([page.waitForNavigation(), page.click('input[value=开始生成]')]);
  const frames = page.locator('iframe[name=html]');
  assert.equal(await frames.count(), 5); // 2 top-level pages and 3 sub-category pages
  await page.waitForFunction(() => [...document.querySelectorAll('iframe')].every(
    (f) => f.contentDocument?.body?.textContent.includes('生成HTML成功！')));
  await page.screenshot({ path: join(screenshotDir, 'create_all.png'), fullPage: true });

  // The generated pages, read from disk through the engine by a visitor who is not signed in.
  const visitor = await browser.newContext();
  const top = await visitor.newPage();
  await top.goto(`${site.base}/sort_list_1.html`);
  assert.equal(await top.title(), '电影 - Ostrakan 视频搜索');
  const [front] = await Promise.all([visitor.waitForEvent('page'), top.click('a:text("功夫")')]);
  await front.waitForLoadState();
  assert.match(front.url(), new RegExp(`/list/list_${kungfu}\\.html$`));
  const titles = await front.locator('span[style*="font-size"] a').allTextContents();
  assert.deepEqual(titles, ['功夫熊猫', '功夫足球']);
  await front.screenshot({ path: join(screenshotDir, 'list_page.png'), fullPage: true });

  const [opened] = await Promise.all([front.waitForEvent('popup'), front.click('a:text("功夫熊猫")')]);
  await opened.waitForLoadState();
  assert.match(opened.url(), /\/admin\/index\.asp$/);
  assert.equal(sql("select click from db where title='功夫熊猫'"), '8');
  await visitor.close();
});
