// The pages of unattended gathering in Chromium, against a fixture video site: schedules added,
// edited and removed; runs queued, stopped and their failed pages queued again; rules exported
// as a file, imported after a preview; a rule tried with a typed keyword in its test pop-up.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { promisify } from 'node:util';
import { useSite, screenshot, fill, clickToLoad, addRule } from './harness.mjs';

// Result page n of the fixture site: three entries, UTF-8; page 2 fails until `healed`.
let healed = false;
function answer(url) {
  const n = /^\/s\/(\d+)\.html/.exec(url)?.[1];
  if (!n) return [404, 'text/plain', 'missing'];
  if (n === '2' && !healed) return [500, 'text/plain', 'down'];
  const entries = [1, 2, 3].map((i) => `<li class="v"><a href="v/${n}-${i}.html" title="x">功夫 Movie ${n}-${i}</a><p>第 ${i} 集</p></li>`);
  return [200, 'text/html; charset=utf-8', `<html><body><ul>${entries.join('\n')}</ul></body></html>`];
}

const fixture = useSite({ answer });
// Runs the ostrakan command (without blocking: the fixture site answers from this process).
const ostrakan = async (...args) => (await promisify(execFile)(process.env.OSTRAKAN_BINARY, args)).stdout;

// A list rule for the fixture site, added through its form; its id.
async function addListRule(web) {
  await addRule(fixture, 'list', {
    web, url: 'http://remote.test/', gather_url: `${fixture.remote.base}/s/[page].html?q=[keyword]`, next_page: '1',
    error_html: '<div class="none">', cyc_border: '<li class="v">', cyc_border_sn: '1', url_start: '<a href="', url_end: '" title',
    v_url: 'http://remote.test/', title_start: 'title="x">', title_end: '</a>', content_start: '<p>', content_end: '</p>',
  });
  return fixture.site.sql('select max(id) from gather_list_web;');
}

test('the schedule page adds, refuses, edits and removes a schedule', async () => {
  const { site, page } = fixture;
  const rule = await addListRule('定时站');
  await page.goto(`${site.base}/admin/gather_schedule.asp`);
  assert.match(await page.content(), /还没有定时采集/);
  await fill(page, { rule_id: rule, keywords: '功夫\n喜剧', pages: '5-1', every: '6h' });
  await clickToLoad(page, 'input[type=submit]');
  assert.match(await page.textContent('#said'), /页码范围应写成 1-5，没有保存。/);
  assert.equal(await page.inputValue('[name=rule_id]'), rule);  // what was typed is kept
  await page.fill('[name=pages]', '1-2');
  await clickToLoad(page, 'input[type=submit]');
  assert.match(await page.textContent('#schedules'), /列表采集 \d+功夫 喜剧 第 1-2 页每 6h/);

  await clickToLoad(page, '#schedules a:text-is("修改")');
  assert.equal(await page.inputValue('[name=keywords]'), '功夫\n喜剧\n');
  await fill(page, { every: '', cron: '30 2 * * *' });
  await clickToLoad(page, 'input[type=submit]');
  assert.match(await page.textContent('#schedules'), /定时 30 2 \* \* \*/);
  await screenshot(page, 'schedule-page');

  await clickToLoad(page, '#schedules a:text-is("删除")');
  assert.match(await page.content(), /还没有定时采集/);
});

test('the runs page shows queued and failed runs, stops one and queues failed pages again', async () => {
  const { site, page } = fixture;
  const rule = await addListRule('记录站');
  const queue = async (word) => JSON.parse(await ostrakan('gather', '--site', site.site, 'list', rule, '--keyword', word,
    '--pages', '1-3', '--delay-ms', '0', '--retries', '0', '--queue', '--json')).run;
  const failing = await queue('功夫');
  await ostrakan('worker', '--site', site.site, '--once');
  const waiting = await queue('喜剧');

  await page.goto(`${site.base}/admin/gather_run_list.asp`);
  const rowOf = (run) => page.locator('#runs tr', { has: page.locator(`td:text-is("${run}")`) });
  assert.match(await rowOf(waiting).textContent(), /喜剧（第 1-3 页）等待中0\/3/);
  assert.match(await rowOf(failing).textContent(), /功夫（第 1-3 页）完成（有失败）3\/360010/);
  await screenshot(page, 'runs-page');

  await Promise.all([page.waitForLoadState('load'), rowOf(waiting).locator('a:text-is("停止")').click()]);
  assert.match(await rowOf(waiting).textContent(), /已停止/);
  healed = true;
  await Promise.all([page.waitForLoadState('load'), rowOf(failing).locator('a:text-is("重新采集失败页面")').click()]);
  assert.match(await page.textContent('#done'), /已重新排队失败的页面：1/);
  await ostrakan('worker', '--site', site.site, '--once');
  await page.goto(`${site.base}/admin/gather_run_list.asp`);
  assert.match(await rowOf(failing).textContent(), /完成3\/39/);
  assert.equal(site.sql(`select count(*) from db where source = '记录站';`), '9');
});

test('rules are exported, previewed and imported, and tried with a typed keyword', async () => {
  const { site, remote, context, page, alertOf } = fixture;
  const rule = await addListRule('导出站 <甲>');
  await page.goto(`${site.base}/admin/gather_list_web_manage.asp`);
  await page.check(`input[name=id][value="${rule}"]`);
  const [download] = await Promise.all([page.waitForEvent('download'), page.click('input[value=导出选中的规则]')]);
  const file = await download.path();
  assert.equal(JSON.parse(readFileSync(file, 'utf8')).rules[0].web, '导出站 <甲>');

  await page.setInputFiles('input[name=file]', file);
  await Promise.all([page.waitForURL(/gather_rules_import\.asp/), page.click('input[value=预览导入]')]);
  assert.match(await page.textContent('table.list'), /列表采集导出站 <甲>/);
  await screenshot(page, 'rules-import-preview');
  assert.equal(await alertOf('input[value=确认导入]'), '导入成功！共添加 1 条规则。');
  await page.waitForURL(/gather_list_web_manage\.asp/);
  assert.equal(site.sql(`select count(*) from gather_list_web where web = '导出站 <甲>';`), '2');

  // The test pop-up of the new rule: a typed keyword and pages, each page summed up.
  const [popup] = await Promise.all([context.waitForEvent('page'), page.click('span:text-is("测试") >> nth=0')]);
  await popup.waitForLoadState('load');
  await fill(popup, { keyword: '喜剧 片', Page_End: '2' });
  healed = false;
  await Promise.all([popup.waitForURL(/Page_End=2/), popup.click('input[value="测 试"]')]);
  assert.match(await popup.textContent('p.summary'), /第 1 页：匹配 3 条.*第 2 页：未能取得页面（远程网站回答状态 500）.*共匹配 3 条。/s);
  assert.equal(await popup.inputValue('input[name=keyword]'), '喜剧 片');
  assert.ok(remote.asked.includes('/s/1.html?q=%E5%96%9C%E5%89%A7+%E7%89%87'), remote.asked.join(' '));
  await screenshot(popup, 'list-rule-test');
  await popup.close();
});
