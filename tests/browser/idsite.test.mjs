// ID-site gathering as an administrator does it in Chromium: an ID rule for a fixture video
// site added, tried in its pop-up, run over 1 to 4 by itself, its range and records listed.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { useSite, screenshot, fill, addRule } from './harness.mjs';

// Page n of the fixture site, UTF-8; ID 3 is one the site does not have.
function answer(url) {
  const n = /^\/play\/(\d+)\.html$/.exec(url)?.[1];
  if (!n) return [404, 'text/plain', 'missing'];
  if (n === '3') return [200, 'text/html; charset=utf-8', '<html><body><div class="none">没有这个视频</div></body></html>'];
  return [200, 'text/html; charset=utf-8', `<html><head><meta charset="utf-8"></head><body>` +
    `<H1 class="t">Kung Fu 功夫 ${n}</H1><p class="d">第 ${n} 集</p></body></html>`];
}

const fixture = useSite({ answer });

test('an ID rule is added, tested, run over 1 to 4, and its range and records are listed', async () => {
  const { site, remote, context, page, alertOf } = fixture;
  await addRule(fixture, 'id', {
    web: '功夫编号站', url: 'http://kungfu.test/', gather_url: `${remote.base}/play/[id].html`,
    error_html: '<div class="none">', title_start: '<h1 class="t">', title_end: '</h1>',
    content_start: '<p class="d">', content_end: '</p>',
  });

  // The test pop-up: IDs 2 to 3, one with data and one without; nothing is stored.
  const [popup] = await Promise.all([context.waitForEvent('page'), page.click('span:text-is("测试")')]);
  await popup.waitForLoadState('domcontentloaded');
  await fill(popup, { ID_Start: '2', ID_End: '3' });
  await Promise.all([popup.waitForLoadState('load'), popup.click('input[type=submit]')]);
  await popup.waitForSelector('text=找不到相关数据');
  assert.match(await popup.content(), /kung fu 功夫 2<br>kung fu 功夫 2<br>http:\/\/127\.0\.0\.1:\d+\/play\/2\.html<br>/);
  assert.match(await popup.textContent('p.summary'), /编号 2：找到标题.*编号 3：找不到相关数据.*共 1 个编号找到标题。/s);
  await screenshot(popup, 'id-rule-test');
  await popup.close();

  // The run walks 1, 2 and 3 by itself, a second apart; 4 only ends it.
  const from = remote.asked.length;
  await Promise.all([page.waitForURL(/gather_id_db\.asp/), page.click('a[href^="gather_id_db.asp"]')]);
  await fill(page, { ID_Start: '1', ID_End: '4' });
  assert.equal(await alertOf('input[type=submit]'), '采集完成！');
  // The alert's page then moves on to the list-side start page (as the run always has), which
  // knows no list rule 1 and steps back to the ID start page: wait until the browser is there.
  await page.waitForURL(/gather_id_db\.asp\?id=/);
  await page.waitForLoadState('load');
  assert.deepEqual(remote.asked.slice(from, from + 3), ['/play/1.html', '/play/2.html', '/play/3.html']);

  await page.goto(`${site.base}/admin/gather_id_web_manage.asp`);
  assert.match(await page.content(), /功夫编号站<\/td>\s*<td[^>]*>1 - 4<\/td>/);
  await page.goto(`${site.base}/admin/db_list.asp`);
  const list = await page.content();
  assert.match(list, /kung fu 功夫 2/);
  assert.doesNotMatch(list, /\/play\/[34]\.html/);
  assert.match(list, /共2条记录/);
  await screenshot(page, 'idsite-records');
});
