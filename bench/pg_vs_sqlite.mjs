// The same site on SQLite and on PostgreSQL, side by side in one run: db_list.asp page 1 and the
// last page the pager reaches (page numbers stop at 32767), db_search.asp by title (requests per
// second and latency with wrk on loopback), the server's memory after each size, a whole-site
// rebuild (`ostrakan generate`, six category pages) and one gathered entry stored (the
// ostrakan_bench program beside the binary, when built); the search once more with 999 records
// waiting to be taken into the record index (as right after a gather, before a search catches
// up). Each database is prepared as an operator would: its record index built after the bulk
// load (`ostrakan reindex`), the PostgreSQL database vacuumed and analyzed. PostgreSQL runs in a throwaway cluster
// that this script starts in a temporary folder (Unix socket only) and removes at the end.
// Usage: node bench/pg_vs_sqlite.mjs path/to/ostrakan [seconds] [records...]
//   e.g. node bench/pg_vs_sqlite.mjs build/release/ostrakan 10 100000 1000000
// With OSTRAKAN_BENCH_KEEP=DIR the sites and the cluster stay in DIR afterwards (the cluster
// stopped) and a later run with the same DIR uses them instead of filling new ones: filling a
// million records takes minutes. Remove DIR to start afresh (after a schema change, say).
// Needs sqlite3, wrk and PostgreSQL's server programs (/usr/lib/postgresql/15/bin).
import { execFileSync, spawn } from 'node:child_process';
import { existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createServer } from 'node:net';
import { tmpdir } from 'node:os';
import { join, dirname } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const binary = process.argv[2];
const seconds = process.argv[3] ?? '10';
const sizes = process.argv.length > 4 ? process.argv.slice(4).map(Number) : [100000, 1000000];
const clusterScript = join(here, '../tests/support/pg_cluster.sh');
const storeBench = join(dirname(binary), 'ostrakan_bench');

const rows = (records, dateOf) => `
  INSERT INTO db (title, content, url, source, source_url, click, time)
  SELECT '视频标题 ' || i || CASE WHEN i % 1000 = 0 THEN ' 功夫' ELSE '' END,
         '这是第 ' || i || ' 条视频的描述文字。',
         'video' || (i % 50) || '.test/play/' || i || '.html',
         '来源站点' || (i % 50), 'video' || (i % 50) || '.test', i % 997, ${dateOf}`;

// One top-level category and five below it: words that one title in a thousand holds, that every
// title holds, and that no title holds (the rebuild's worst case: the whole table is read).
const categories = `INSERT INTO sort (sort, sort_id, alphabetical_id) VALUES ('视频', 0, 0),
  ('功夫', 1, 1), ('标题 12', 1, 2), ('描述', 1, 3), ('play/77', 1, 4), ('来源站点7', 1, 5);`;

const backends = {
  sqlite: {
    init: (site) => execFileSync(binary, ['init', site, '--password', 'secret123']),
    fill: (site, records) => execFileSync('sqlite3', [join(site, 'data', 'ostrakan.db')], {
      input: `BEGIN; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ${records})
        ${rows(records, "datetime('2026-01-01', '+' || (i % 300) || ' days')")} FROM n; ${categories} COMMIT;`,
    }) && execFileSync(binary, ['reindex', '--site', site]),
  },
  postgresql: {
    init: (site, uri) => execFileSync(binary, ['init', site, '--password', 'secret123', '--database', uri]),
    fill: (site, records, uri) => execFileSync('psql', ['-q', uri], {
      input: `${rows(records, "timestamp '2026-01-01' + (i % 300) * interval '1 day'")}
        FROM generate_series(1, ${records}) AS i; ${categories} VACUUM ANALYZE;`,
    }) && execFileSync(binary, ['reindex', '--site', site]),
    // Statements for the waiting records' search (below).
    sql: (site, uri, sql) => execFileSync('psql', ['-q', uri], { input: sql }),
  },
};
backends.sqlite.sql = (site, uri, sql) =>
  execFileSync('sqlite3', [join(site, 'data', 'ostrakan.db')], { input: sql });

// Records stored since the record index last took them in: one fewer than a search takes in
// before it answers (kPendingBatch), new titles that hold the searched word, so that every
// search reads them all from db. Removed again afterwards, their notes with them (records that
// the index never held leave nothing in it to take out).
const waiting = 999;
const addWaiting = (name) => `INSERT INTO db (title, content, url, source, source_url, click)
  SELECT '功夫 waiting ' || i, 'waiting', 'waiting.test/' || i, 'waiting', 'waiting.test', 0
  FROM ${name === 'sqlite' ? `(WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n
  WHERE i < ${waiting}) SELECT i FROM n)` : `generate_series(1, ${waiting}) AS i`};`;
const removeWaiting = (name) => `DELETE FROM db WHERE source = 'waiting';` +
  (name === 'sqlite'
    ? 'DELETE FROM db_index_pending WHERE indexed = 0 AND id NOT IN (SELECT id FROM db);'
    : 'SELECT db_gram_take_in(1, 100000, true);');

// Signs in as a browser does: reads the verify picture's digits against body.Fix (digits 9 down
// to 0, 320 bytes each in rows of 32) and posts the form.
async function signInOverHttp(base, site) {
  const picture = await fetch(`${base}/admin/inc/code.asp`);
  const cookie = picture.headers.get('set-cookie').split(';')[0];
  const bmp = Buffer.from(await picture.arrayBuffer());
  const font = readFileSync(join(site, 'admin', 'inc', 'body.Fix'));
  const offset = bmp.readUInt32LE(10);
  let code = '';
  for (let cell = 0; cell < 4; cell++) {
    code += [...Array(10).keys()].find((d) => [...Array(10).keys()].every((row) =>
      bmp.subarray(offset + row * 120 + cell * 30, offset + row * 120 + cell * 30 + 30)
        .equals(font.subarray((9 - d) * 320 + row * 32, (9 - d) * 320 + row * 32 + 30))));
  }
  const login = await fetch(`${base}/admin/login.asp`, {
    method: 'POST',
    headers: { cookie, 'content-type': 'application/x-www-form-urlencoded' },
    body: `username=admin&password=secret123&verifyid=${code}`,
  });
  const signedIn = login.headers.get('set-cookie')?.split(';')[0];
  if (!signedIn) throw new Error('sign-in failed');
  return signedIn;
}

function freePort() {
  return new Promise((resolve) => {
    const s = createServer().listen(0, '127.0.0.1', () => {
      const { port } = s.address();
      s.close(() => resolve(port));
    });
  });
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
    `p99 ${pick(/99%\s+([\d.]+\w+)/)}`;
}

const keep = process.env.OSTRAKAN_BENCH_KEEP;
if (keep) mkdirSync(join(keep, 'sites'), { recursive: true });
const work = keep ? join(keep, 'sites') : mkdtempSync(join(tmpdir(), 'ostrakan-pgbench-'));
const cluster = keep ? join(keep, 'cluster') : join('/tmp', `ostrakan-pgbench-${process.pid}`);
const kept = keep && existsSync(join(cluster, 'data', 'PG_VERSION'));
execFileSync('bash', [clusterScript, kept ? 'resume' : 'start', cluster]);
const admin = `postgresql:///postgres?host=${cluster}&user=ostrakan`;
try {
  for (const records of sizes) {
    const nearEnd = Math.min(Math.ceil(records / 20), 32767);
    const pages = [
      ['db_list.asp page 1', '/admin/db_list.asp'],
      [`db_list.asp page ${nearEnd}`, `/admin/db_list.asp?page=${nearEnd}&db_count=${records}`],
      ['db_search.asp title', '/admin/db_search.asp?action=title&keyword=%B9%A6%B7%F2'],
    ];
    console.log(`\n${records} records (wrk -t2 -c8 -d${seconds}s)`);
    const databases = [];
    for (const [name, backend] of Object.entries(backends)) {
      const site = join(work, `${name}-${records}`);
      const database = `bench_${records}`;
      const uri = `postgresql:///${database}?host=${cluster}&user=ostrakan`;
      if (!existsSync(site)) {
        if (name === 'postgresql') execFileSync('psql', ['-q', admin, '-c', `CREATE DATABASE ${database}`]);
        backend.init(site, uri);
        backend.fill(site, records, uri);
      }
      const port = await freePort();
      const child = spawn(binary, ['serve', '--site', site, '--listen', `127.0.0.1:${port}`],
                          { stdio: ['ignore', 'ignore', 'inherit'] });
      const base = `http://127.0.0.1:${port}`;
      for (let i = 0; !(await fetch(`${base}/admin/index.asp`).then(() => true, () => false)); i++) {
        if (i === 200) throw new Error('the server did not start');
        await new Promise((r) => setTimeout(r, 50));
      }
      try {
        const cookie = await signInOverHttp(base, site);
        console.log(`  ${name}: after start ${memory(child.pid)}`);
        for (const [page, path] of pages) console.log(`    ${page.padEnd(24)} ${wrk(base + path, cookie)}`);
        backend.sql(site, uri, addWaiting(name));
        try {
          console.log(`    ${`same, ${waiting} waiting`.padEnd(24)} ${wrk(base + pages[2][1], cookie)}`);
        } finally {
          backend.sql(site, uri, removeWaiting(name));
        }
        console.log(`  ${name}: after the runs ${memory(child.pid)}`);
      } finally {
        child.kill('SIGTERM');
        await new Promise((r) => (child.exitCode !== null ? r() : child.once('exit', r)));
      }
      const started = process.hrtime.bigint();
      execFileSync(binary, ['generate', '--site', site]);
      const rebuild = Number(process.hrtime.bigint() - started) / 1e9;
      console.log(`    ${'generate (6 pages)'.padEnd(24)} ${rebuild.toFixed(2)} s`);
      databases.push(join(site, 'data', 'ostrakan.db'));
    }
    if (existsSync(storeBench)) {
      const out = execFileSync(storeBench, ['--benchmark_filter=BM_Store(Entry|Page)InSite',
                                            '--benchmark_min_time=2'],
                               { env: { ...process.env, OSTRAKAN_BENCH_DATABASES: databases.join(',') } });
      for (const line of out.toString().split('\n').filter((l) => l.startsWith('BM_')))
        console.log(`  one gathered entry stored: ${line.replace(/\s+/g, ' ')}`);
    }
  }
} finally {
  execFileSync('bash', [clusterScript, keep ? 'halt' : 'stop', cluster]);
  if (!keep) rmSync(work, { recursive: true, force: true });
}
