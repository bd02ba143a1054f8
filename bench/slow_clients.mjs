// Slow and idle clients, and a flood of cookie-less requests, against `ostrakan serve`.
//
// 1. Opens N connections (default 1000) that send a request head one line every 2 seconds and
//    never finish it, plus idle ones that send nothing; meanwhile a normal client asks for a
//    static file and a signed-in page 200 times each, one request at a time, and the script
//    prints their latencies (p50, p99, max) and how many slow connections the server closed.
// 2. Sends at least FLOOD (default 100000) cookie-less requests to admin/inc/md5.asp with wrk, then
//    checks that the signed-in session still works, and prints the server's resident memory
//    before and after.
// Everything talks to 127.0.0.1 only and stops by itself (about a minute in all).
// Usage: node bench/slow_clients.mjs build/release/ostrakan [slow] [flood]
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import net from 'node:net';
import { join, dirname, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
process.env.OSTRAKAN_BINARY = resolve(process.argv[2] ?? 'build/release/ostrakan');
const slowCount = Number(process.argv[3] ?? 1000);
const flood = Number(process.argv[4] ?? 100000);
const { startSite, signInOverHttp } = await import(join(here, '../tests/browser/harness.mjs'));

const sleep = (ms) => new Promise((ok) => setTimeout(ok, ms));
const rss = (pid) => {
  const m = readFileSync(`/proc/${pid}/status`, 'utf8').match(/VmRSS:\s+(\d+) kB/);
  return `${(Number(m[1]) / 1024).toFixed(1)} MiB`;
};

async function timed(url, headers = {}) {
  const start = process.hrtime.bigint();
  const r = await fetch(url, { headers });
  await r.arrayBuffer();
  return { ms: Number(process.hrtime.bigint() - start) / 1e6, status: r.status };
}

function summary(name, samples) {
  const ms = samples.map((s) => s.ms).sort((a, b) => a - b);
  const at = (q) => ms[Math.min(ms.length - 1, Math.floor(q * ms.length))].toFixed(1);
  const bad = samples.filter((s) => s.status !== 200).length;
  console.log(`${name.padEnd(22)} p50 ${at(0.5)} ms  p99 ${at(0.99)} ms  max ${ms.at(-1).toFixed(1)} ms` +
    `  non-200 ${bad}`);
}

const site = await startSite();
const pid = site.child?.pid ?? site.pid;
try {
  const cookie = await signInOverHttp(site);
  const { port } = new URL(site.base);

  // 1. Slow and idle connections.
  let closedByServer = 0;
  const sockets = [];
  for (let i = 0; i < slowCount; ++i) {
    const s = net.connect({ host: '127.0.0.1', port: Number(port) });
    s.on('error', () => {});
    s.on('close', () => ++closedByServer);
    if (i % 2 === 0) s.on('connect', () => s.write('GET /admin/index.asp HTTP/1.1\r\nHost: x\r\n'));
    sockets.push(s);
  }
  const trickle = setInterval(() => {
    for (let i = 0; i < sockets.length; i += 2) if (!sockets[i].destroyed) sockets[i].write('X-Slow: 1\r\n');
  }, 2000);
  await sleep(3000);
  console.log(`${slowCount} slow or idle connections open (${pid ? 'server ' + rss(pid) : ''})`);
  const files = [], pages = [];
  for (let i = 0; i < 200; ++i) {
    files.push(await timed(`${site.base}/admin/css/style.css`));
    pages.push(await timed(`${site.base}/admin/desktop.asp`, { cookie }));
  }
  summary('admin/css/style.css', files);
  summary('admin/desktop.asp', pages);
  clearInterval(trickle);
  console.log(`slow connections closed by the server meanwhile: ${closedByServer}`);
  for (const s of sockets) s.destroy();
  await sleep(500);

  // 2. A flood of cookie-less requests.
  const before = pid ? rss(pid) : '?';
  // Runs of 5 seconds until the flood is sent (at most 20 runs).
  const started = Date.now();
  let total = 0;
  for (let run = 0; run < 20 && total < flood; ++run) {
    const out = execFileSync('wrk', ['-t2', '-c16', '-d5s', `${site.base}/admin/inc/md5.asp`]).toString();
    total += Number(out.match(/(\d+) requests in/)?.[1] ?? 0);
  }
  const rps = (total / ((Date.now() - started) / 1000)).toFixed(0);
  // The client's pooled connection may have timed out during the flood: ask on a fresh one.
  const still = await fetch(`${site.base}/admin/desktop.asp`, { headers: { cookie } })
    .catch(() => fetch(`${site.base}/admin/desktop.asp`, { headers: { cookie } }));
  const text = new TextDecoder('gbk').decode(await still.arrayBuffer());
  console.log(`flood: ${total} cookie-less requests to admin/inc/md5.asp at ${rps} req/s; ` +
    `server memory ${before} -> ${pid ? rss(pid) : '?'}; administrator still signed in: ` +
    `${!text.includes('您目前还没有登录')}`);
} finally {
  await site.stop();
}
