// A record as an administrator handles it in Chromium: added from the form, listed, found,
// edited from the search results, and deleted.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { useSite, screenshot, fill } from './harness.mjs';

const fixture = useSite();

test('a record is added, listed, found, edited and deleted', async () => {
  const { site, page, dialogs, alertOf } = fixture;
  // Titles lose their blanks on the way in.
  await page.goto(`${site.base}/admin/db_add.asp`);
  await fill(page, { title: '功夫熊猫 第一部', content: '阿宝的故事：一只熊猫学功夫。',
    url: 'video.test/kungfu-panda.html', source: '测试视频站', source_url: 'video.test' });
  assert.equal(await alertOf('form input[type=submit]'), '添加成功！');
  await page.waitForURL(/db_add\.asp$/);

  await page.goto(`${site.base}/admin/db_search.asp`);
  await page.fill('input[name=keyword]', '熊猫');
  await page.selectOption('select[name=action]', 'title');
  await Promise.all([page.waitForNavigation(), page.click('form[action*=db_search] input[type=submit]')]);
  assert.equal(await page.locator('a', { hasText: '功夫熊猫第一部' }).count(), 1);

  // Edit from the search results; the description came back in Chinese.
  await Promise.all([page.waitForNavigation(), page.click('text=修改')]);
  assert.equal(await page.inputValue('textarea[name=content]'), '阿宝的故事：一只熊猫学功夫。');
  await page.fill('input[name=title]', '功夫熊猫2');
  assert.equal(await alertOf('form input[type=submit]'), '修改成功！');
  await page.waitForURL(/db_edit\.asp\?id=\d+$/);

  await page.goto(`${site.base}/admin/db_list.asp`);
  assert.equal(await page.locator('a', { hasText: '功夫熊猫2' }).count(), 1);
  await screenshot(page, 'db_list');
  await Promise.all([page.waitForNavigation(), page.click('a[href^="javascript:db_delete("]')]);
  assert.equal(dialogs.at(-1), '删除成功！');
  assert.equal(await page.locator('a', { hasText: '功夫熊猫' }).count(), 0);
});
