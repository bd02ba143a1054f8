// The list pages on large tables: db_list.asp page 1 and a page near the end, db_search.asp by
// title, keyword_manage.asp with a filter; requests per second and latency with wrk on
// loopback, and the server's memory (resident and peak) after each size.
// Usage: node bench/large_tables.mjs path/to/ostrakan [seconds] [records...]
//   e.g. node bench/large_tables.mjs build/release/ostrakan 10 100000 1000000
// Needs the sqlite3 command-line shell (Debian package sqlite3) to fill the tables.
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join, dirname } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
process.env.OSTRAKAN_BINARY = process.argv[2] ?? process.env.OSTRAKAN_BINARY;
const seconds = process.argv[3] ?? '10';
const sizes = process.argv.length > 4 ? process.argv.slice(4).map(Number) : [100000, 1000000];
const { startSite, signInOverHttp } = await import(join(here, '../tests/browser/harness.mjs'));

// Fills db with `records` rows (one title in 1,000 holds the word 功夫) and keyword with a
// tenth as many words.
function fill(site, records) {
  const keywords = Math.max(1, Math.floor(records / 10));
  const sql = `
    PRAGMA journal_mode = WAL;
    BEGIN;
    WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ${records})
    INSERT INTO db (title, content, url, source, source_url, click, time)
    SELECT '视频标题 ' || i || CASE WHEN i % 1000 = 0 THEN ' 功夫' ELSE '' END,
           '这是第 ' || i || ' 条视频的描述文字。',
           'video' || (i % 50) || '.test/play/' || i || '.html',
           '来源站点' || (i % 50), 'video' || (i % 50) || '.test',
           i % 997, datetime('2026-01-01', '+' || (i % 300) || ' days')
    FROM n;
    WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ${keywords})
    INSERT INTO keyword (keyword, hot) SELECT '关键词' || i, i % 5000 FROM n;
    COMMIT;`;
  execFileSync('sqlite3', [join(site, 'data', 'ostrakan.db')], { input: sql });
  return keywords;
}

function memory(pid) {
  const status = readFileSync(`/proc/${pid}/status`, 'utf8');
  const kb = (key) => Number(status.match(new RegExp(`${key}:\\s+(\\d+)`))[1]);
  return `resident ${(kb('VmRSS') / 1024).toFixed(1)} MiB, peak ${(kb('VmHWM') / 1024).toFixed(1)} MiB`;
}

function wrk(url, cookie) {
  const out = execFileSync('wrk', ['-t2', '-c8', `-d${seconds}s`, '--latency', '-H', `Cookie: ${cookie}`, url]).toString();
  const pick = (re) => out.match(re)?.[1] ?? '?';
  return `${pick(/Requests\/sec:\s+([\d.]+)/).padStart(9)} req/s  p50 ${pick(/50%\s+([\d.]+\w+)/)}  ` +
    `p99 ${pick(/99%\s+([\d.]+\w+)/)}  non-2xx ${pick(/Non-2xx or 3xx responses: (\d+)/) === '?' ? 0 : pick(/Non-2xx or 3xx responses: (\d+)/)}`;
}


for (const records of sizes) {
  let keywords = 0;
  const site = await startSite({ prepare: (dir) => { keywords = fill(dir, records); } });
  try {
    const cookie = await signInOverHttp(site);
    // Page numbers are 16-bit integers: past page 32767 a list page answers nothing.
    const nearEnd = Math.min(Math.ceil(records / 20) - 1, 32767);
    // The query strings carry GBK bytes, as the browser sends them for these GB2312 pages.
    const word = '%B9%A6%B7%F2';      // 功夫
    const filter = '%B9%D8%BC%FC%B4%CA12';  // 关键词12
    const pages = [
      ['db_list.asp page 1', '/admin/db_list.asp'],
      [`db_list.asp page ${nearEnd}`, `/admin/db_list.asp?page=${nearEnd}&db_count=${records}`],
      ['db_search.asp title', `/admin/db_search.asp?action=title&keyword=${word}`],
      ['keyword_manage.asp filter', `/admin/keyword_manage.asp?keyword=${filter}`],
    ];
    console.log(`\n${records} records, ${keywords} keywords (wrk -t2 -c8 -d${seconds}s)`);
    console.log(`  after start:            ${memory(site.pid)}`);
    for (const [name, path] of pages) {
      console.log(`  ${name.padEnd(26)} ${wrk(site.base + path, cookie)}`);
    }
    console.log(`  after the runs:         ${memory(site.pid)}`);
  } finally {
    await site.stop();
  }
}
