// The engine's overhead over civetweb alone, measured side by side in one run: wrk against a
// bare civetweb "hello" server (bench/hello/hello_civetweb.cpp), then against the engine for a
// static file (admin/css/style.css) and a signed-in page (desktop.asp). Prints requests per
// second and each as a ratio of civetweb's.
// Usage: node bench/engine_overhead.mjs build/release [seconds] [connections]
//   (the folder holds the Release build of the targets ostrakan and hello_civetweb)
import { execFileSync, spawn } from 'node:child_process';
import { join, dirname, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const build = resolve(process.argv[2] ?? 'build/release');
const seconds = process.argv[3] ?? '10';
const connections = process.argv[4] ?? '16';
process.env.OSTRAKAN_BINARY = join(build, 'ostrakan');
const { startSite, signInOverHttp } = await import(join(here, '../tests/browser/harness.mjs'));

function wrk(url, extra = []) {
  const out = execFileSync('wrk', ['-t2', `-c${connections}`, `-d${seconds}s`, '--latency', ...extra, url])
    .toString();
  return {
    rps: Number(out.match(/Requests\/sec:\s+([\d.]+)/)[1]),
    p99: out.match(/99%\s+([\d.]+\w+)/)[1],
    errors: Number(out.match(/Non-2xx or 3xx responses: (\d+)/)?.[1] ?? 0),
  };
}

async function startHello() {
  const port = 20000 + Math.floor(Math.random() * 20000);
  const child = spawn(join(build, 'hello_civetweb'), [String(port)], { stdio: ['ignore', 'pipe', 'inherit'] });
  await new Promise((ok, fail) => {
    child.stdout.once('data', ok);
    child.once('exit', () => fail(new Error('hello_civetweb did not start')));
  });
  return { base: `http://127.0.0.1:${port}`, stop: () => child.kill('SIGTERM') };
}

const hello = await startHello();
const site = await startSite();
try {
  const cookie = await signInOverHttp(site);
  console.log(`wrk -t2 -c${connections} -d${seconds}s on loopback, ${new Date().toISOString()}`);
  const base = wrk(`${hello.base}/`);
  const rows = [
    ['civetweb hello', base],
    ['admin/css/style.css', wrk(`${site.base}/admin/css/style.css`)],
    ['admin/desktop.asp', wrk(`${site.base}/admin/desktop.asp`, ['-H', `Cookie: ${cookie}`])],
  ];
  for (const [name, r] of rows)
    console.log(`${name.padEnd(22)} ${r.rps.toFixed(0).padStart(8)} req/s  ${(r.rps / base.rps).toFixed(2)}x` +
      `  p99 ${r.p99}  non-2xx ${r.errors}`);
} finally {
  hello.stop();
  await site.stop();
}
