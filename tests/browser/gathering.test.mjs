// List-site gathering as an administrator does it in Chromium: a rule for a fixture video site
// added, tried in its pop-up, run over its pages by itself, and its records listed.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { useSite, screenshot, fill, addRule } from './harness.mjs';

// Result page n of the fixture site: three entries, UTF-8, with 1 x 1 GIF pictures.
const gif = Buffer.from('R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7', 'base64');
function answer(url, host) {
  if (url.startsWith('/img/')) return [200, 'image/gif', gif];
  const n = /^\/s\/(\d+)\.html/.exec(url)?.[1];
  if (!n) return [404, 'text/plain', 'missing'];
  const entries = [1, 2, 3].map((i) => `<li class="v"><img src="http://${host}/img/${n}-${i}.gif" alt="">` +
    `<a href="v/${n}-${i}.html" title="x">功夫 Movie ${n}-${i}</a><p>第 ${n}-${i} 集 Text</p></li>`);
  return [200, 'text/html; charset=utf-8', `<html><head><meta charset="utf-8"></head><body><ul>${entries.join('\n')}</ul></body></html>`];
}

const fixture = useSite({ answer });

test('a rule is added, verified, run over three pages, and its records are listed', async () => {
  const { site, remote, context, page, alertOf } = fixture;
  await addRule(fixture, 'list', {
    web: '功夫视频', url: 'http://remote.test/', gather_url: `${remote.base}/s/[page].html?q=[keyword]`,
    next_page: '1', error_html: '<div class="none">', cyc_border: '<li class="v">', cyc_border_sn: '1',
    image_start: '<img src="http://', image_end: '" alt', url_start: '<a href="', url_end: '" title',
    v_url: 'http://remote.test/', title_start: 'title="x">', title_end: '</a>', content_start: '<p>',
    content_end: '</p>', content_filtration: ' text',
  });

  // The test pop-up shows what the rule cuts from the live page, asked with the keyword in UTF-8.
  const [popup] = await Promise.all([context.waitForEvent('page'), page.click('text=测试')]);
  await popup.waitForLoadState('domcontentloaded');
  assert.match(await popup.content(), /功夫 movie 1-1<br>第 1-1 集<br>http:\/\/remote\.test\/v\/1-1\.html/);
  assert.ok(remote.asked.includes('/s/1.html?q=%E7%94%B5%E5%BD%B1'), remote.asked.join(' '));
  await popup.close();

  // The run walks pages 1 to 3 by itself; page 4 only ends it.
  await Promise.all([page.waitForURL(/gather_list_db\.asp/), page.click('a[href^="gather_list_db.asp"]')]);
  await fill(page, { Page_Start: '1', Page_End: '4' });
  assert.equal(await alertOf('input[type=submit]'), '采集完成！');
  await page.waitForURL(/gather_list_db\.asp\?ID=/);

  await page.goto(`${site.base}/admin/db_list.asp`);
  const list = await page.content();
  for (const id of ['1-1', '2-2', '3-3']) assert.match(list, new RegExp(`remote\\.test/v/${id}\\.html`));
  assert.match(list, /共9条记录/);
  await screenshot(page, 'gathering-records');
});
