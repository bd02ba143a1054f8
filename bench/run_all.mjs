// Every speed figure of the project in one table of ratios, each measured against its own
// yardstick in the same run, so that a regression is one command away.
// Usage: node bench/run_all.mjs [build folder] [--only=word,...] [--skip=word,...]
//   The build folder (default build/release) holds a Release build of the targets ostrakan,
//   ostrakan_bench and hello_beast. --only / --skip pick figures whose name holds a word.
// Needs wrk and the sqlite3 shell; everything talks to 127.0.0.1 only. The rebuild figure makes
// its 1M-record site once under $OSTRAKAN_BENCH_DATA (default /tmp/ostrakan-bench).
//
// A figure is one line of `figures`: its name, its aim, and a function giving the measured
// ratio (plus a note with the raw figures). To add one, add a line.
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join, dirname, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { fill } from './large_site.mjs';

const here = dirname(fileURLToPath(import.meta.url));
const args = process.argv.slice(2);
const build = resolve(args.find((a) => !a.startsWith('--')) ?? 'build/release');
const listOf = (flag) => (args.find((a) => a.startsWith(`--${flag}=`))?.split('=')[1].split(',') ?? []);
const only = listOf('only'), skip = listOf('skip');
process.env.OSTRAKAN_BINARY = join(build, 'ostrakan');
const { startSite, signInOverHttp } = await import(join(here, '../tests/browser/harness.mjs'));

// Runs ostrakan_bench for the benchmarks matching `filter`; their results by name (the part
// before the first '/').
function gbench(filter, env = {}) {
  const out = execFileSync(join(build, 'ostrakan_bench'),
    [`--benchmark_filter=${filter}`, '--benchmark_format=json'],
    { env: { ...process.env, ...env }, stdio: ['ignore', 'pipe', 'ignore'], maxBuffer: 1 << 26 });
  const byName = {};
  for (const b of JSON.parse(out).benchmarks) {
    if (b.error_occurred) throw new Error(`${b.name}: ${b.error_message}`);
    byName[b.name.split('/')[0]] = b;
  }
  return byName;
}
const ms = (b) => b.real_time * { ns: 1e-6, us: 1e-3, ms: 1, s: 1000 }[b.time_unit];

// a's time over b's (lower is better).
function timeRatio(a, b) {
  const r = gbench(`^(${a}|${b})(/|$)`);
  return [ms(r[a]) / ms(r[b]), `${ms(r[a]).toFixed(2)} ms / ${ms(r[b]).toFixed(2)} ms`];
}
// a's counter over b's (from one run of both).
function counterRatio(a, b, counter) {
  const r = gbench(`^(${a}|${b})(/|$)`);
  return [r[a][counter] / r[b][counter], `${r[a][counter].toFixed(1)} / ${r[b][counter].toFixed(1)} ${counter}`];
}
function memoryGrowth() {
  const b = gbench('^BM_HeadlessRunMemory(/|$)').BM_HeadlessRunMemory;
  const at1000 = b.rss_kib_at_1000, growth = b.rss_growth_kib;
  return [(at1000 + growth) / at1000, `RSS ${at1000.toFixed(0)} KiB at page 1,000, ${growth >= 0 ? '+' : ''}${growth.toFixed(0)} KiB by page 10,000`];
}
// a's rate over b's (higher is better).
function rateRatio(a, b, counter) {
  const r = gbench(`^(${a}|${b})(/|$)`);
  return [r[a][counter] / r[b][counter], `${r[a][counter].toFixed(0)} / ${r[b][counter].toFixed(0)} ${counter}`];
}

// A site with `records` records, shared by the figures that need one.
let large = null;
async function largeSite(records = 1000000) {
  if (!large) {
    const site = await startSite({ prepare: (dir) => { fill(dir, records); } });
    large = { site, cookie: await signInOverHttp(site) };
  }
  return large;
}
// The median time of `count` requests for a page, one after another.
async function pageMs(path, count = 30) {
  const { site, cookie } = await largeSite();
  const times = [];
  for (let i = 0; i < count + 3; ++i) {
    const start = process.hrtime.bigint();
    const answer = await fetch(site.base + path, { headers: { cookie } });
    if (answer.status !== 200) throw new Error(`${path}: status ${answer.status}`);
    await answer.arrayBuffer();
    if (i >= 3) times.push(Number(process.hrtime.bigint() - start) / 1e6);
  }
  return times.sort((a, b) => a - b)[Math.floor(times.length / 2)];
}
// The server's CPU time (every thread) per request over `count` requests, one after another,
// against the bare statements' CPU time: unlike the wall-time ratio it leaves out the client
// and does not move with what else the machine runs.
async function pageCpuRatio(path, bare, count = 60) {
  const { site, cookie } = await largeSite();
  const cpuMs = () => {
    const fields = readFileSync(`/proc/${site.pid}/stat`, 'utf8').split(') ')[1].split(' ');
    return (Number(fields[11]) + Number(fields[12])) * 1000 / ticksPerSecond;
  };
  const get = async () => {
    const answer = await fetch(site.base + path, { headers: { cookie } });
    if (answer.status !== 200) throw new Error(`${path}: status ${answer.status}`);
    await answer.arrayBuffer();
  };
  for (let i = 0; i < 3; ++i) await get();
  const start = cpuMs();
  for (let i = 0; i < count; ++i) await get();
  const page = (cpuMs() - start) / count;
  const b = gbench(`^${bare}$`, { OSTRAKAN_LIST_DB: join(site.site, 'data', 'ostrakan.db') })[bare];
  const bareCpu = b.cpu_time * { ns: 1e-6, us: 1e-3, ms: 1, s: 1000 }[b.time_unit];
  return [page / bareCpu, `${page.toFixed(2)} ms / ${bareCpu.toFixed(2)} ms CPU`];
}
const ticksPerSecond = Number(execFileSync('getconf', ['CLK_TCK']).toString());
async function pageRatio(path, bare) {
  const page = await pageMs(path);
  const { site } = await largeSite();
  const b = gbench(`^${bare}$`, { OSTRAKAN_LIST_DB: join(site.site, 'data', 'ostrakan.db') })[bare];
  return [page / ms(b), `${page.toFixed(2)} ms / ${ms(b).toFixed(2)} ms`];
}

// Runs a node benchmark script and returns its output.
const script = (name, ...rest) =>
  execFileSync('node', [join(here, name), ...rest], { stdio: ['ignore', 'pipe', 'inherit'] }).toString();
function engineRatio(page) {
  const out = script('engine_overhead.mjs', build, '5');
  const line = out.split('\n').find((l) => l.startsWith(page));
  return [Number(line.match(/([\d.]+)x/)[1]), line.replace(/\s+/g, ' ').trim()];
}
function slowClientsRatio() {
  const out = script('slow_clients.mjs', join(build, 'ostrakan'), '2000', '500', '5');
  const p99 = (name) => {
    const m = out.match(new RegExp(`${name}\\s.*p99\\s+([\\d.]+)(us|ms|s)`));
    return Number(m[1]) * { us: 1e-3, ms: 1, s: 1000 }[m[2]];
  };
  const loaded = p99('loaded: admin/desktop.asp'), quiet = p99('quiet: admin/desktop.asp');
  return [loaded / quiet, `p99 ${loaded.toFixed(2)} ms loaded / ${quiet.toFixed(2)} ms quiet`];
}

const figures = [
  ['list extraction of a 1 MiB page / one case-insensitive scan', '<= 2', () => timeRatio('BM_ExtractLargePage', 'BM_CaseInsensitiveScan')],
  ['headless list run / fetch alone (pages/s)', '>= 0.8', () => rateRatio('BM_HeadlessRun', 'BM_FetchOnly', 'pages/s')],
  ['headless list run / fetch alone, process CPU per page', '', () => counterRatio('BM_HeadlessRun', 'BM_FetchOnly', 'cpu_us/page')],
  ['headless list run of new entries / fetch alone (pages/s)', '>= 0.8', () => rateRatio('BM_HeadlessRunNewEntries', 'BM_FetchOnly', 'pages/s')],
  ['headless run of 10,000 pages: RSS at the end / at page 1,000', '~1', () => memoryGrowth()],
  ['headless list run, 1 MiB pages of 2,000 entries / fetch alone', '>= 0.3', () => rateRatio('BM_HeadlessRunLargePages', 'BM_FetchOnlyLargePages', 'pages/s')],
  ['headless ID run / fetch alone (ids/s)', '>= 0.8', () => rateRatio('BM_HeadlessIdRun', 'BM_IdFetchOnly', 'ids/s')],
  ['db_list.asp page 1 at 1M records / its bare statements', '<= 1.2', () => pageRatio('/admin/db_list.asp', 'BM_RecordListStatements')],
  ['db_list.asp page 1 at 1M records / its bare statements, CPU', '<= 1.2', () => pageCpuRatio('/admin/db_list.asp', 'BM_RecordListStatements')],
  ['db_search.asp by title at 1M records / its bare statements', 'no slower', () => pageRatio('/admin/db_search.asp?action=title&keyword=%B9%A6%B7%F2'  /* 功夫 in GBK */, 'BM_RecordSearchStatements')],
  ['whole-site rebuild, 1,000 pages over 1M records / bare queries', '<= 1.5', () => timeRatio('BM_Rebuild', 'BM_BareQueries')],
  ['admin/desktop.asp / bare Beast hello (req/s)', '', () => engineRatio('admin/desktop.asp')],
  ['admin/css/style.css / bare Beast hello (req/s)', '', () => engineRatio('admin/css/style.css')],
  ['desktop.asp p99 with 2,500 idle and slow clients / quiet', '', () => slowClientsRatio()],
  // The search figures go here, one line each.
];

const picked = figures.filter(([name]) =>
  (!only.length || only.some((w) => name.includes(w))) && !skip.some((w) => name.includes(w)));
console.log(`${new Date().toISOString()}  ${build}`);
console.log(`${'figure'.padEnd(66)} ${'ratio'.padStart(7)}  ${'aim'.padEnd(9)}  measured`);
try {
  for (const [name, aim, measure] of picked) {
    let cells;
    try {
      const [ratio, note] = await measure();
      cells = [ratio.toFixed(2), note];
    } catch (e) {
      cells = ['failed', String(e.message ?? e).split('\n')[0]];
    }
    console.log(`${name.padEnd(66)} ${cells[0].padStart(7)}  ${aim.padEnd(9)}  ${cells[1]}`);
  }
} finally {
  await large?.site.stop();
}
