// Requests per second of a signed-in page (desktop.asp) against a small static file on the
// same server, with wrk on loopback.
// Usage: node bench/pages.mjs path/to/ostrakan [seconds] [connections]
import { execFileSync } from 'node:child_process';
import { join, dirname } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
process.env.OSTRAKAN_BINARY = process.argv[2] ?? process.env.OSTRAKAN_BINARY;
const seconds = process.argv[3] ?? '10';
const connections = process.argv[4] ?? '16';
const { startSite, signInOverHttp } = await import(join(here, '../tests/browser/harness.mjs'));

const site = await startSite();
try {
  const cookie = await signInOverHttp(site);

  const run = (path, extra = []) => {
    const out = execFileSync('wrk', ['-t2', `-c${connections}`, `-d${seconds}s`, '--latency', ...extra,
      `${site.base}${path}`]).toString();
    const rps = out.match(/Requests\/sec:\s+([\d.]+)/)[1];
    const p50 = out.match(/50%\s+([\d.]+\w+)/)[1];
    const p99 = out.match(/99%\s+([\d.]+\w+)/)[1];
    const errors = out.match(/Non-2xx or 3xx responses: (\d+)/)?.[1] ?? '0';
    console.log(`${path.padEnd(24)} ${rps.padStart(10)} req/s  p50 ${p50}  p99 ${p99}  non-2xx ${errors}`);
  };
  console.log(`wrk -t2 -c${connections} -d${seconds}s on loopback`);
  run('/admin/desktop.asp', ['-H', `Cookie: ${cookie}`]);
  run('/admin/css/style.css');
} finally {
  await site.stop();
}
