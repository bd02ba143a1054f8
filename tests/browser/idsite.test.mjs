// ID-site gathering as an administrator does it in Chromium: add an ID rule for a fixture
// video site (a small node server on loopback), try it in its pop-up, start a run over 1 to 4
// and let it walk by itself, then find the rule's range in the rule list and the records in
// the record list.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { createServer } from 'node:http';
import { startSite, signedInBrowser, screenshotDir } from './harness.mjs';
import { join } from 'node:path';

let site;
let remote;
let remoteBase;
let browser;
let context;
let page;
let dialogs;
let waitForDialog;
const asked = [];

// Page n of the fixture site, UTF-8; ID 3 is one the site does not have.
function videoPage(n) {
  if (n === '3') return '<html><body><div class="none">没有这个视频</div></body></html>';
  return `<html><head><meta charset="utf-8"></head><body><H1 class="t">Kung Fu 功夫 ${n}</H1>` +
    `<p class="d">第 ${n} 集</p></body></html>`;
}

before(async () => {
  remote = createServer((req, res) => {
    asked.push(req.url);
    const m = /^\/play\/(\d+)\.html$/.exec(req.url);
    if (!m) {
      res.writeHead(404).end('missing');
      return;
    }
    res.writeHead(200, { 'content-type': 'text/html; charset=utf-8' }).end(videoPage(m[1]));
  });
  await new Promise((r) => remote.listen(0, '127.0.0.1', r));
  remoteBase = `http://127.0.0.1:${remote.address().port}`;
  site = await startSite();
  ({ browser, context, page, dialogs, waitForDialog } = await signedInBrowser(site));
});

after(async () => {
  await browser?.close();
  await site?.stop();
  await new Promise((r) => (remote ? remote.close(r) : r()));
});

test('an ID rule is added, tested, run over 1 to 4, and its range and records are listed', async () => {
  await page.goto(`${site.base}/admin/gather_id_web_add.asp`);
  const fields = {
    web: '功夫编号站', url: 'http://kungfu.test/', gather_url: `${remoteBase}/play/[id].html`,
    error_html: '<div class="none">', title_start: '<h1 class="t">', title_end: '</h1>',
    content_start: '<p class="d">', content_end: '</p>',
  };
  for (const [name, value] of Object.entries(fields)) await page.fill(`[name=${name}]`, value);
  await page.selectOption('select[name=charset]', 'utf-8');
  await Promise.all([page.waitForURL(/gather_id_web_manage\.asp/), page.click('input[type=submit]')]);
  assert.ok(dialogs.includes('添加成功！'));
  assert.match(await page.content(), /功夫编号站/);

  // The test pop-up: IDs 2 to 3, one with data and one without; nothing is stored.
  const [popup] = await Promise.all([context.waitForEvent('page'), page.click('span:text-is("测试")')]);
  await popup.waitForLoadState('domcontentloaded');
  assert.match(await popup.content(), /功夫编号站/);
  await popup.fill('input[name=ID_Start]', '2');
  await popup.fill('input[name=ID_End]', '3');
  await Promise.all([popup.waitForLoadState('load'), popup.click('input[type=submit]')]);
  await popup.waitForSelector('text=找不到相关数据');
  const shown = await popup.content();
  assert.match(shown, /kung fu 功夫 2<br>kung fu 功夫 2<br>http:\/\/127\.0\.0\.1:\d+\/play\/2\.html<br>/);
  assert.match(shown, /找不到相关数据<br>http:\/\/127\.0\.0\.1:\d+\/play\/3\.html/);
  await popup.screenshot({ path: join(screenshotDir, 'idsite-verify.png') });
  await popup.close();

  // The run walks 1, 2 and 3 by itself, a second apart; 4 only ends it.
  const before = asked.length;
  await Promise.all([page.waitForURL(/gather_id_db\.asp/), page.click('a[href^="gather_id_db.asp"]')]);
  await page.fill('input[name=ID_Start]', '1');
  await page.fill('input[name=ID_End]', '4');
  await page.click('input[type=submit]');
  await waitForDialog('采集完成！');
  // The alert's page then moves on to the list-side start page (as the run always has), which
  // knows no list rule 1 and steps back to the ID start page: wait until the browser is there.
  await page.waitForURL(/gather_id_db\.asp\?id=/);
  await page.waitForLoadState('load');
  assert.deepEqual(asked.slice(before, before + 3), ['/play/1.html', '/play/2.html', '/play/3.html']);

  await page.goto(`${site.base}/admin/gather_id_web_manage.asp`);
  assert.match(await page.content(), /功夫编号站<\/td>\s*<td[^>]*>1 - 4<\/td>/);
  await page.screenshot({ path: join(screenshotDir, 'idsite-rules.png') });

  await page.goto(`${site.base}/admin/db_list.asp`);
  const list = await page.content();
  for (const id of ['1', '2']) assert.match(list, new RegExp(`127\\.0\\.0\\.1:\\d+/play/${id}\\.html`));
  assert.doesNotMatch(list, /\/play\/[34]\.html/);
  assert.match(list, /kung fu 功夫 2/);
  assert.match(list, /共2条记录/);
  await page.screenshot({ path: join(screenshotDir, 'idsite-records.png') });
});
