// Pages that wait on a slow remote site must not hold up the pages an administrator or a
// visitor needs: PAGES (default 64, the default --threads) gathering pages
// (gather_list_web_verify.asp) each wait on a fetch that a loopback remote site answers only
// after 60 seconds, while a client asks 200 times each, one request at a time, for the sign-in
// page, goto.asp and a static file. Prints their latencies (p50, p99, max) and statuses, then
// stops the server (SIGTERM) while the pages still wait and prints how long it took to exit
// and what the waiting pages were answered.
// Everything talks to 127.0.0.1 only; under a minute in all.
// Usage: node bench/blocked_pages.mjs build/release/ostrakan [pages]
import http from 'node:http';
import { join, dirname, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
process.env.OSTRAKAN_BINARY = resolve(process.argv[2] ?? 'build/release/ostrakan');
const pageCount = Number(process.argv[3] ?? 64);
const { startSite, signInOverHttp } = await import(join(here, '../tests/browser/harness.mjs'));

// The remote site: every page after 60 seconds (or when the run ends).
const waiting = new Set();
const remote = http.createServer((req, res) => {
  const timer = setTimeout(() => res.end('<li class="v">late</li>'), 60000);
  waiting.add({ timer, res });
});
await new Promise((ok) => remote.listen(0, '127.0.0.1', ok));
const remoteBase = `http://127.0.0.1:${remote.address().port}`;

async function timed(url, headers = {}) {
  const start = process.hrtime.bigint();
  const r = await fetch(url, { headers, redirect: 'manual' });
  await r.arrayBuffer();
  return { ms: Number(process.hrtime.bigint() - start) / 1e6, status: r.status };
}

function summary(name, samples) {
  const ms = samples.map((s) => s.ms).sort((a, b) => a - b);
  const at = (q) => ms[Math.min(ms.length - 1, Math.floor(q * ms.length))].toFixed(1);
  const statuses = [...new Set(samples.map((s) => s.status))].join(',');
  console.log(`${name.padEnd(22)} p50 ${at(0.5)} ms  p99 ${at(0.99)} ms  max ${ms.at(-1).toFixed(1)} ms` +
    `  statuses ${statuses}`);
}

const site = await startSite();
try {
  const cookie = await signInOverHttp(site);
  // A list rule whose list pages are on the slow remote site, added through its form.
  const form = new URLSearchParams({
    web: 'slow', url: `${remoteBase}/`, gather_url: `${remoteBase}/[page].html?q=[keyword]`,
    next_page: '1', charset: 'gb2312', error_html: '<div class="none">', cyc_border: '<li class="v">',
    cyc_border_sn: '1', image_start: '', image_end: '', url_start: '<a href="', url_end: '" title',
    url_filtration: '', v_url: `${remoteBase}/`, title_start: '<a>', title_end: '</a>',
    title_filtration: '', content_start: '<p>', content_end: '</p>', content_filtration: '',
  });
  await fetch(`${site.base}/admin/gather_list_web_add_ok.asp`, {
    method: 'POST', body: form.toString(),
    headers: { cookie, 'content-type': 'application/x-www-form-urlencoded' },
  }).then((r) => r.arrayBuffer());
  const id = site.sql('select max(id) from gather_list_web;');
  // A record for goto.asp to count and redirect to.
  const record = site.sql("insert into db(title, url) values('r', 'http://127.0.0.1/'); select max(id) from db;");
  if (!id) throw new Error('the rule was not added');

  const blocked = [];
  for (let i = 0; i < pageCount; ++i)
    blocked.push(fetch(`${site.base}/admin/gather_list_web_verify.asp?id=${id}&keyword=k${i}`,
      { headers: { cookie } }).then((r) => r.status, () => 'failed'));
  for (let i = 0; i < 500 && waiting.size < pageCount; ++i) await new Promise((ok) => setTimeout(ok, 20));
  console.log(`${waiting.size} of ${pageCount} gathering pages wait on the remote site`);

  const signIn = [], goto = [], file = [];
  for (let i = 0; i < 200; ++i) {
    signIn.push(await timed(`${site.base}/admin/login.asp`));
    goto.push(await timed(`${site.base}/goto.asp?id=${record}`));
    file.push(await timed(`${site.base}/admin/css/style.css`));
  }
  summary('admin/login.asp', signIn);
  summary('goto.asp', goto);
  summary('admin/css/style.css', file);
  const stopping = process.hrtime.bigint();
  await site.stop();
  const stopMs = Number(process.hrtime.bigint() - stopping) / 1e6;
  const statuses = await Promise.all(blocked);
  console.log(`SIGTERM with ${pageCount} pages waiting: exited in ${stopMs.toFixed(0)} ms; ` +
    `the pages were answered ${[...new Set(statuses)].join(',')}`);
} finally {
  for (const w of waiting) {
    clearTimeout(w.timer);
    w.res.destroy();
  }
  await site.stop();
  remote.close();
}
