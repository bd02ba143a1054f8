// Many idle and slow clients against `ostrakan serve`, while wrk sends normal requests.
//
// 1. A quiet run: wrk -t2 -c16 for a static file and a signed-in page (desktop.asp), with
//    latencies.
// 2. The same with IDLE (default 10000) idle keep-alive connections (each sent one request and
//    then nothing) and SLOW (default 1500) slowloris connections (a head line every 2 seconds,
//    never finished) held open: whenever the server closes one (its time-outs), another takes
//    its place, as an attacker would. Prints p99 beside the quiet run's, the requests refused
//    or failed, and the server's resident memory (at most seen while they were open).
// 3. Closes them and prints the server's memory 10 seconds later.
// 4. With --elsewhere: the same crowd against a second server (another site served by the same
//    program) while wrk measures the first. The crowd then costs the machine what it did
//    (its own CPU, and a server's for its connections), but not this server: how much of the
//    loaded p99 is the two shared cores rather than how the server handles the crowd.
// The crowd is bench/crowd/crowd.cpp, built beside ostrakan (target crowd); it raises its own
// limit of open files. Everything talks to 127.0.0.1 only.
// Usage: node bench/slow_clients.mjs build/release/ostrakan [idle] [slow] [seconds] [--elsewhere]
import { execFile, spawn } from 'node:child_process';
import { promisify } from 'node:util';
import { readFileSync } from 'node:fs';
import { join, dirname, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
process.env.OSTRAKAN_BINARY = resolve(process.argv[2] ?? 'build/release/ostrakan');
const elsewhere = process.argv.includes('--elsewhere');
const args = process.argv.filter((a) => a !== '--elsewhere');
const idleCount = Number(args[3] ?? 10000);
const slowCount = Number(args[4] ?? 1500);
const seconds = args[5] ?? '10';
const { startSite, signInOverHttp } = await import(join(here, '../tests/browser/harness.mjs'));

const sleep = (ms) => new Promise((ok) => setTimeout(ok, ms));
const rssMiB = (pid) =>
  Number(readFileSync(`/proc/${pid}/status`, 'utf8').match(/VmRSS:\s+(\d+) kB/)[1]) / 1024;

// wrk runs beside node's event loop, so the slow clients keep trickling and closed ones are
// replaced while it measures.
async function wrk(url, extra = []) {
  const { stdout: out } =
    await promisify(execFile)('wrk', ['-t2', '-c16', `-d${seconds}s`, '--latency', ...extra, url]);
  const errors = out.match(/Socket errors: connect (\d+), read (\d+), write (\d+), timeout (\d+)/);
  return {
    rps: Number(out.match(/Requests\/sec:\s+([\d.]+)/)[1]),
    p99: out.match(/99%\s+([\d.]+\w+)/)[1],
    non2xx: Number(out.match(/Non-2xx or 3xx responses: (\d+)/)?.[1] ?? 0),
    socketErrors: errors ? errors.slice(1).reduce((a, b) => a + Number(b), 0) : 0,
  };
}

const show = (name, r) =>
  console.log(`${name.padEnd(34)} ${r.rps.toFixed(0).padStart(7)} req/s  p99 ${r.p99.padStart(8)}` +
    `  non-2xx ${r.non2xx}  socket errors ${r.socketErrors}`);

// The crowd runs as a program of its own (bench/crowd/crowd.cpp, one thread on epoll), so
// that holding it costs the machine little; node's sockets cost a core.
async function startCrowd(port) {
  const crowd = spawn(join(dirname(process.env.OSTRAKAN_BINARY), 'crowd'),
    [String(port), String(idleCount), String(slowCount)], { stdio: ['ignore', 'pipe', 'inherit'] });
  const lines = [];
  crowd.stdout.on('data', (d) => lines.push(...d.toString().trim().split('\n')));
  while (!lines.some((l) => l.startsWith('ready'))) {
    if (crowd.exitCode !== null) throw new Error('the crowd did not start');
    await sleep(100);
  }
  return { crowd, lines };
}

async function stopCrowd(crowd) {
  crowd.kill('SIGTERM');
  await new Promise((ok) => (crowd.exitCode !== null ? ok() : crowd.once('exit', ok)));
}

const site = await startSite();
const pid = site.pid;
try {
  const cookie = await signInOverHttp(site);
  const port = Number(new URL(site.base).port);
  const file = `${site.base}/admin/css/style.css`;
  const page = `${site.base}/admin/desktop.asp`;
  console.log(`wrk -t2 -c16 -d${seconds}s on loopback, ${new Date().toISOString()}`);
  const startRss = rssMiB(pid);
  show('quiet: admin/css/style.css', await wrk(file));
  show('quiet: admin/desktop.asp', await wrk(page, ['-H', `Cookie: ${cookie}`]));
  // Page threads keep the stack pages their pages touched: the crowd is measured from here.
  const quietRss = rssMiB(pid);

  const { crowd, lines } = await startCrowd(port);
  let peakRss = 0;
  const watch = setInterval(() => (peakRss = Math.max(peakRss, rssMiB(pid))), 1000);
  await sleep(3000);
  console.log(`${lines.find((l) => l.startsWith('ready')).slice(6)} idle or slow connections ` +
    `opened; server ${rssMiB(pid).toFixed(1)} MiB (at start ${startRss.toFixed(1)} MiB, after ` +
    `the quiet runs ${quietRss.toFixed(1)} MiB)`);
  show('loaded: admin/css/style.css', await wrk(file));
  show('loaded: admin/desktop.asp', await wrk(page, ['-H', `Cookie: ${cookie}`]));
  peakRss = Math.max(peakRss, rssMiB(pid));
  clearInterval(watch);
  await stopCrowd(crowd);
  const [, open, replaced] = lines.at(-1).match(/open (\d+) replaced (\d+)/);
  console.log(`${open} idle or slow connections open after the loaded runs; replaced after ` +
    `the server closed them: ${replaced}; server memory at most ${peakRss.toFixed(1)} MiB`);
  await sleep(10000);
  console.log(`10 s after they left: server ${rssMiB(pid).toFixed(1)} MiB`);
  if (elsewhere) {
    const other = await startSite();
    try {
      const away = await startCrowd(Number(new URL(other.base).port));
      await sleep(3000);
      show('crowd elsewhere: admin/css/style.css', await wrk(file));
      show('crowd elsewhere: admin/desktop.asp', await wrk(page, ['-H', `Cookie: ${cookie}`]));
      await stopCrowd(away.crowd);
    } finally {
      await other.stop();
    }
  }
} finally {
  await site.stop();
}
