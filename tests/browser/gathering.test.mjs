// List-site gathering as an administrator does it in Chromium: add a rule for a fixture video
// site (a small node server on loopback), try it in its pop-up, start a run and let it walk
// its pages by itself, then find the gathered records in the record list.
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

// Result page n of the fixture site: three entries, UTF-8.
function resultPage(n, host) {
  let html = '<html><head><meta charset="utf-8"></head><body><ul>';
  for (let i = 1; i <= 3; i++) {
    const id = `${n}-${i}`;
    html += `<li class="v"><img src="http://${host}/img/${id}.gif" alt=""><a href="v/${id}.html" ` +
      `title="x">功夫 Movie ${id}</a><p>第 ${id} 集 Text</p></li>\n`;
  }
  return html + '</ul></body></html>';
}

// A 1 x 1 transparent GIF for the entries' pictures.
const gif = Buffer.from('R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7', 'base64');

before(async () => {
  remote = createServer((req, res) => {
    if (req.url.startsWith('/img/')) {
      res.writeHead(200, { 'content-type': 'image/gif' }).end(gif);
      return;
    }
    asked.push(req.url);
    const m = /^\/s\/(\d+)\.html/.exec(req.url);
    if (!m) {
      res.writeHead(404).end('missing');
      return;
    }
    res.writeHead(200, { 'content-type': 'text/html; charset=utf-8' }).end(resultPage(m[1], req.headers.host));
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

test('a rule is added, verified, run over three pages, and its records are listed', async () => {
  await page.goto(`${site.base}/admin/gather_list_web_add.asp`);
  const fields = {
    web: '功夫视频', url: 'http://remote.test/', gather_url: `${remoteBase}/s/[page].html?q=[keyword]`,
    next_page: '1', error_html: '<div class="none">', cyc_border: '<li class="v">', cyc_border_sn: '1',
    image_start: '<img src="http://', image_end: '" alt', url_start: '<a href="', url_end: '" title',
    v_url: 'http://remote.test/', title_start: 'title="x">', title_end: '</a>', content_start: '<p>',
    content_end: '</p>', content_filtration: ' text',
  };
  for (const [name, value] of Object.entries(fields)) await page.fill(`[name=${name}]`, value);
  await page.selectOption('select[name=charset]', 'utf-8');
  await Promise.all([page.waitForURL(/gather_list_web_manage\.asp/), page.click('input[type=submit]')]);
  assert.ok(dialogs.includes('添加成功！'));
  assert.match(await page.content(), /功夫视频/);

  // The test pop-up shows what the rule cuts from the live page.
  const [popup] = await Promise.all([context.waitForEvent('page'), page.click('text=测试')]);
  await popup.waitForLoadState('domcontentloaded');
  const shown = await popup.content();
  assert.match(shown, /功夫 movie 1-1<br>第 1-1 集<br>http:\/\/remote\.test\/v\/1-1\.html/);
  assert.match(shown, /<img src="http:\/\/127\.0\.0\.1:\d+\/img\/1-3\.gif"/);
  assert.equal(asked.at(-1), '/s/1.html?q=%E7%94%B5%E5%BD%B1');
  await popup.screenshot({ path: join(screenshotDir, 'gathering-verify.png') });
  await popup.close();

  // The run walks pages 1 to 3 by itself; page 4 only ends it.
  await Promise.all([page.waitForURL(/gather_list_db\.asp/), page.click('a[href^="gather_list_db.asp"]')]);
  await page.fill('input[name=Page_Start]', '1');
  await page.fill('input[name=Page_End]', '4');
  await page.click('input[type=submit]');
  await waitForDialog('采集完成！');
  await page.waitForURL(/gather_list_db\.asp\?ID=/);

  await page.goto(`${site.base}/admin/db_list.asp`);
  const list = await page.content();
  for (const id of ['1-1', '2-2', '3-3']) assert.match(list, new RegExp(`remote\\.test/v/${id}\\.html`));
  assert.doesNotMatch(list, /remote\.test\/v\/4-1\.html/);
  assert.match(list, /共9条记录/);
  await page.screenshot({ path: join(screenshotDir, 'gathering-records.png') });
});
