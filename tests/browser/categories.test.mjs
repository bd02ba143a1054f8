// Categories and the front end as an administrator builds them in Chromium: top-level
// categories and sub-categories (one batch), a whole-site rebuild from create_all, and the
// generated pages read through the engine.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { useSite, screenshot } from './harness.mjs';

const fixture = useSite();

test('categories are built, the site generated and its pages read', async () => {
  const { site, browser, page, dialogs, dialogAfter, alertOf } = fixture;
  // Submits a form whose answer is an alert and then location.replace(to); the alert.
  async function submit(form, to) {
    const answer = await alertOf(`${form} input[type=submit]`);
    await page.waitForURL(to);
    return answer;
  }
  await page.goto(`${site.base}/admin/sort_manage.asp`);
  for (const name of ['电影', '电视', '临时']) {
    await page.fill('form[name=add] input[name=sort]', name);
    assert.equal(await submit('form[name=add]', /sort_manage\.asp$/), '添加成功！');
  }
  // A delete asks first, then goes.
  const count = dialogs.length;
  await page.click('a[href="javascript:sort_delete(3)"]');
  assert.equal(await dialogAfter(count, 2), '删除成功！');
  assert.equal(dialogs[count], '确定要删除这个分类吗？它下面的二级分类也会一起删除。');
  await page.waitForURL(/sort_manage\.asp$/);
  await Promise.all([page.waitForNavigation(), page.click('a:text("电影")')]);
  await page.fill('form[name=add] input[name=sort]', '功夫');
  await page.selectOption('form[name=add] select[name=alphabetical_id]', { label: 'G' });
  assert.equal(await submit('form[name=add]', /sort_list\.asp/), '添加成功！');
  await Promise.all([page.waitForNavigation(), page.click('a:text("批量添加")')]);
  await page.fill('textarea[name=sort_list]', '动作 片\n冒险');
  assert.equal(await submit('form[name=batch]', /sort_list\.asp/), '批量添加成功！');
  assert.match(await page.textContent('body'), /动作 片/);

  // Records whose titles name the sub-category (a visitor's click through goto.asp is the public
  // test's).
  site.sql(`insert into db (title, content, url, click) values ('功夫熊猫', '熊猫学功夫', 'v.test/panda', 7),
    ('功夫足球', '足球', 'v.test/soccer', 2), ('喜剧之王', '喜剧', 'v.test/king', 9);`);
  const kungfu = site.sql("select id from sort where sort='功夫'");
  await page.goto(`${site.base}/admin/create_all.asp`);
  await Promise.all([page.waitForNavigation(), page.click('input[value=开始生成]')]);
  assert.equal(await page.locator('iframe[name=html]').count(), 5);  // 2 top-level and 3 sub-category pages
  await page.waitForFunction(() => [...document.querySelectorAll('iframe')].every(
    (f) => f.contentDocument?.body?.textContent.includes('生成HTML成功！')));

  // The generated pages, read through the engine by a visitor who is not signed in.
  const visitor = await browser.newContext();
  const top = await visitor.newPage();
  await top.goto(`${site.base}/sort_list_1.html`);
  assert.equal(await top.title(), '电影 - Ostrakan 视频搜索');
  const [front] = await Promise.all([visitor.waitForEvent('page'), top.click('a:text("功夫")')]);
  await front.waitForLoadState();
  assert.match(front.url(), new RegExp(`/list/list_${kungfu}\\.html$`));
  assert.deepEqual(await front.locator('span[style*="font-size"] a').allTextContents(), ['功夫熊猫', '功夫足球']);
  await screenshot(front, 'list_page');
});
