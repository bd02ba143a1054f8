// The public side as a visitor meets it in Chromium, without signing in: the front page, a
// search typed into its box (a Chinese word sent from the GB2312 form), the second page of
// results, a result followed through goto.asp, and the word among the front page's searches.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { useSite, screenshot } from './harness.mjs';

const fixture = useSite();

test('a visitor searches from the front page and follows a result', async () => {
  const { site, browser } = fixture;
  const here = site.base.replace('http://', '');
  site.sql(`insert into sort (sort, sort_id) values ('电影', 0);
    WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30)
    INSERT INTO db (title, content, url, source) SELECT '功夫片' || i, '第' || i || '部', '${here}/?from=' || i, '来源'
    FROM n;
    insert into db (title, content, url) values ('熊猫', '不相干', 'v.test/panda');`);
  const visitor = await (await browser.newContext()).newPage();
  await visitor.goto(`${site.base}/`);
  assert.equal(await visitor.title(), 'Ostrakan 视频搜索');
  assert.equal(await visitor.locator('ul.categories a').textContent(), '电影');
  assert.equal(await visitor.locator('ul.records a').first().textContent(), '熊猫');

  await visitor.fill('input[name=keyword]', '功夫');
  await Promise.all([visitor.waitForNavigation(), visitor.click('input[type=submit]')]);
  assert.match(visitor.url(), /search\.asp\?keyword=%B9%A6%B7%F2$/);
  assert.equal(await visitor.inputValue('input[name=keyword]'), '功夫');
  await screenshot(visitor, 'public_search');
  // Twenty to a page, newest first: the second page holds the ten oldest.
  await Promise.all([visitor.waitForNavigation(), visitor.click('a:text("下一页")')]);
  assert.deepEqual(await visitor.locator('.result .title a').allTextContents(),
    Array.from({ length: 10 }, (_, i) => `功夫片${10 - i}`));

  const [opened] = await Promise.all([visitor.waitForEvent('popup'), visitor.click('a:text-is("功夫片1")')]);
  await opened.waitForLoadState();
  assert.match(opened.url(), /\/\?from=1$/);
  assert.equal(site.sql("select click from db where title='功夫片1'"), '1');
  // Another address than the front page seen before, which the browser may keep for a minute.
  await opened.goto(`${site.base}/index.asp`);
  assert.deepEqual(await opened.locator('ul.keywords a').allTextContents(), ['功夫']);
});
