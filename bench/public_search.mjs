// The public search on a large table: search.asp by a common two-character Chinese word (page 1
// and page 50), by a rare Latin word, and the front page, under wrk -t2 -c16 on loopback;
// also the time of filling the table and of `ostrakan reindex` on it.
// Usage: node bench/public_search.mjs path/to/ostrakan [seconds] [records]
//   e.g. node bench/public_search.mjs build/release/ostrakan 10 1000000
// Needs wrk and the sqlite3 shell (scripts/install-deps.sh --test installs both).
import { execFileSync } from 'node:child_process';
import { join, dirname } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
process.env.OSTRAKAN_BINARY = process.argv[2] ?? process.env.OSTRAKAN_BINARY;
const seconds = process.argv[3] ?? '10';
const records = Number(process.argv[4] ?? 1000000);
const { startSite } = await import(join(here, '../tests/browser/harness.mjs'));

// 300 common characters; titles and descriptions are random pieces of them, one title in 100
// holds 功夫 and ten hold "Zebrafish".
const pool = Array.from({ length: 300 }, (_, i) => String.fromCodePoint(0x4e00 + i * 5)).join('');
const piece = (n) => `substr('${pool}', abs(random()) % ${300 - n} + 1, ${n})`;

function fill(site) {
  const db = join(site, 'data', 'ostrakan.db');
  const started = Date.now();
  execFileSync('sqlite3', [db], { input: `
    BEGIN;
    WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ${records})
    INSERT INTO db (title, content, url, source, source_url)
    SELECT ${piece(6)} || ' ' || ${piece(5)} ||
             CASE WHEN i % 100 = 0 THEN '功夫' ELSE '' END ||
             CASE WHEN i % ${Math.floor(records / 10)} = 0 THEN ' Zebrafish' ELSE '' END,
           ${piece(20)} || ${piece(20)} || ' ' || ${piece(20)},
           'v.test/play/' || i || '.html', '来源站点', 'v.test'
    FROM n;
    COMMIT;` });
  const filled = Date.now();
  const out = execFileSync(process.env.OSTRAKAN_BINARY, ['reindex', '--site', site, '--json']).toString();
  console.log(`${records} records: filled in ${((filled - started) / 1000).toFixed(1)} s, ` +
    `reindex ${JSON.parse(out.trim().split('\n').pop()).seconds.toFixed(1)} s`);
}

function wrk(url) {
  const out = execFileSync('wrk', ['-t2', '-c16', `-d${seconds}s`, '--latency', url]).toString();
  const pick = (re) => out.match(re)?.[1] ?? '?';
  return `${pick(/Requests\/sec:\s+([\d.]+)/).padStart(9)} req/s  p50 ${pick(/50%\s+([\d.]+\w+)/)}  ` +
    `p99 ${pick(/99%\s+([\d.]+\w+)/)}  non-2xx ${pick(/Non-2xx or 3xx responses: (\d+)/) === '?' ? 0 : pick(/Non-2xx or 3xx responses: (\d+)/)}`;
}

const site = await startSite({ prepare: fill });
try {
  const kungfu = '%B9%A6%B7%F2';
  console.log(`search.asp 功夫 page 1   ${wrk(`${site.base}/search.asp?keyword=${kungfu}`)}`);
  console.log(`search.asp 功夫 page 50  ${wrk(`${site.base}/search.asp?keyword=${kungfu}&page=50`)}`);
  console.log(`search.asp zebrafish    ${wrk(`${site.base}/search.asp?keyword=zebrafish`)}`);
  console.log(`front page              ${wrk(`${site.base}/`)}`);
} finally {
  await site.stop();
}
