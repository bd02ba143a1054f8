// Gathering as an administrator does it in Chromium, against a fixture video site: an ID rule
// and a list rule added, each tried in its pop-up, run over its IDs or pages by itself, and the
// records it stored listed. (The ID rule goes first: its run ends on the list side's start page,
// which steps back to the ID side while there is no list rule.)
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { useSite, screenshot, fill, addRule } from './harness.mjs';

// The fixture site, UTF-8: result page n under /s/ (three entries with 1 x 1 GIF pictures), and
// the page of ID n under /play/ (ID 3 is one the site does not have).
const gif = Buffer.from('R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7', 'base64');
function answer(url, host) {
  const utf8 = (body) => [200, 'text/html; charset=utf-8', `<html><head><meta charset="utf-8"></head><body>${body}</body></html>`];
  if (url.startsWith('/img/')) return [200, 'image/gif', gif];
  const n = /^\/s\/(\d+)\.html/.exec(url)?.[1];
  if (n) {
    return utf8(`<ul>${[1, 2, 3].map((i) => `<li class="v"><img src="http://${host}/img/${n}-${i}.gif" alt="">` +
      `<a href="v/${n}-${i}.html" title="x">功夫 Movie ${n}-${i}</a><p>第 ${n}-${i} 集 Text</p></li>`).join('\n')}</ul>`);
  }
  const id = /^\/play\/(\d+)\.html$/.exec(url)?.[1];
  if (id === '3') return utf8('<div class="none">没有这个视频</div>');
  if (id) return utf8(`<H1 class="t">Kung Fu 功夫 ${id}</H1><p class="d">第 ${id} 集</p>`);
  return [404, 'text/plain', 'missing'];
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

  await page.goto(`${site.base}/admin/db_list.asp`);
  const list = await page.content();
  assert.match(list, /kung fu 功夫 2/);
  assert.doesNotMatch(list, /\/play\/[34]\.html/);
  assert.equal(site.sql("select count(*) from db where source = '功夫编号站';"), '2');
  await screenshot(page, 'idsite-records');
});

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
  assert.equal(site.sql("select count(*) from db where source = '功夫视频';"), '9');
  await screenshot(page, 'gathering-records');
});
