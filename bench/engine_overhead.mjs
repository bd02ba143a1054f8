// The engine's overhead over a bare server, measured side by side in one run: wrk against the
// yardstick, a bare Boost.Beast server on the engine's I/O model answering a 32-byte page
// (bench/hello/hello_beast.cpp), then against the engine for a static file
// (admin/css/style.css), a page that does nothing (a page file of plain text, added to the
// site for the run: what a page pays for its hand-off to a page thread and back, whatever it
// does) and a signed-in page (desktop.asp). Prints requests per second and each
// as a ratio of the yardstick's, and the server's CPU time per request (user and system time of
// its process from /proc, which a busy machine disturbs less than the rate). When the build has
// hello_civetweb (civetweb installed), it is measured too, for comparison with earlier figures. Given another ostrakan executable (an
// earlier version's Release build), it is measured in the same run, for a before and after.
// Usage: node bench/engine_overhead.mjs build/release [seconds] [connections] [other-ostrakan]
//   (the folder holds the Release build of the targets ostrakan and hello_beast)
import { execFileSync, spawn } from 'node:child_process';
import { existsSync, readFileSync, writeFileSync } from 'node:fs';
import { join, dirname, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const build = resolve(process.argv[2] ?? 'build/release');
const seconds = process.argv[3] ?? '10';
const connections = process.argv[4] ?? '16';
const other = process.argv[5] ? resolve(process.argv[5]) : null;
process.env.OSTRAKAN_BINARY = join(build, 'ostrakan');
const { startSite, signInOverHttp } = await import(join(here, '../tests/browser/harness.mjs'));

// User and system time of a process, in seconds (the kernel counts in ticks of 10 ms).
function cpuSeconds(pid) {
  const fields = readFileSync(`/proc/${pid}/stat`, 'utf8').split(') ')[1].split(' ');
  return (Number(fields[11]) + Number(fields[12])) / 100;
}

// wrk against `url`, served by the process `pid`.
function wrk(url, pid, extra = []) {
  const before = cpuSeconds(pid);
  const out = execFileSync('wrk', ['-t2', `-c${connections}`, `-d${seconds}s`, '--latency', ...extra, url])
    .toString();
  const requests = Number(out.match(/(\d+) requests in/)[1]);
  return {
    cpuUs: ((cpuSeconds(pid) - before) * 1e6) / requests,
    rps: Number(out.match(/Requests\/sec:\s+([\d.]+)/)[1]),
    p99: out.match(/99%\s+([\d.]+\w+)/)[1],
    errors: Number(out.match(/Non-2xx or 3xx responses: (\d+)/)?.[1] ?? 0),
  };
}

async function startHello(program) {
  const port = 20000 + Math.floor(Math.random() * 20000);
  const child = spawn(join(build, program), [String(port)], { stdio: ['ignore', 'pipe', 'inherit'] });
  await new Promise((ok, fail) => {
    child.stdout.once('data', ok);
    child.once('exit', () => fail(new Error(`${program} did not start`)));
  });
  return { base: `http://127.0.0.1:${port}`, pid: child.pid, stop: () => child.kill('SIGTERM') };
}

const hello = await startHello('hello_beast');
const civetweb = existsSync(join(build, 'hello_civetweb')) ? await startHello('hello_civetweb') : null;
// A page file without a component or a script: 32 bytes of text, like the yardstick's answer.
const prepare = (dir) => writeFileSync(join(dir, 'empty_page.asp'), 'An empty page, 32 bytes of text.');
const site = await startSite({ prepare });
const otherSite = other ? await startSite({ program: other, prepare }) : null;
try {
  const cookie = await signInOverHttp(site);
  const otherCookie = otherSite && (await signInOverHttp(otherSite));
  console.log(`wrk -t2 -c${connections} -d${seconds}s on loopback, ${new Date().toISOString()}`);
  const base = wrk(`${hello.base}/`, hello.pid);
  const rows = [['beast hello (yardstick)', base]];
  if (civetweb) rows.push(['civetweb hello', wrk(`${civetweb.base}/`, civetweb.pid)]);
  rows.push(['admin/css/style.css', wrk(`${site.base}/admin/css/style.css`, site.pid)]);
  rows.push(['empty_page.asp', wrk(`${site.base}/empty_page.asp`, site.pid)]);
  rows.push(['admin/desktop.asp', wrk(`${site.base}/admin/desktop.asp`, site.pid, ['-H', `Cookie: ${cookie}`])]);
  if (otherSite) {
    rows.push(['other: style.css', wrk(`${otherSite.base}/admin/css/style.css`, otherSite.pid)]);
    rows.push(['other: empty_page.asp', wrk(`${otherSite.base}/empty_page.asp`, otherSite.pid)]);
    rows.push(['other: desktop.asp',
      wrk(`${otherSite.base}/admin/desktop.asp`, otherSite.pid, ['-H', `Cookie: ${otherCookie}`])]);
  }
  for (const [name, r] of rows)
    console.log(`${name.padEnd(24)} ${r.rps.toFixed(0).padStart(8)} req/s  ${(r.rps / base.rps).toFixed(2)}x` +
      `  p99 ${r.p99}  cpu ${r.cpuUs.toFixed(1)} us/request  non-2xx ${r.errors}`);
} finally {
  hello.stop();
  civetweb?.stop();
  await site.stop();
  await otherSite?.stop();
}
