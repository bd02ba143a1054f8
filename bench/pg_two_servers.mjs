// Two servers behind nginx against one, on one PostgreSQL site: goto.asp (a click counted and a
// redirect) for random records, with wrk on loopback. nginx runs with an upstream block as in
// deploy/nginx-ostrakan.conf, listing one `ostrakan serve` and then two (two ports, one site);
// the engine alone without nginx is the yardstick. PostgreSQL runs in a throwaway cluster that
// this script starts in a temporary folder (Unix socket only) and removes at the end.
// Usage: node bench/pg_two_servers.mjs path/to/ostrakan [seconds] [records]
//   e.g. node bench/pg_two_servers.mjs build/release/ostrakan 10 100000
// Needs nginx, wrk and PostgreSQL's server programs (/usr/lib/postgresql/15/bin).
import { execFileSync, spawn } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:net';
import { tmpdir } from 'node:os';
import { join, dirname } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const [binary, seconds = '10', records = '100000'] = process.argv.slice(2);
const clusterScript = join(here, '../tests/support/pg_cluster.sh');

function freePort() {
  return new Promise((resolve) => {
    const s = createServer().listen(0, '127.0.0.1', () => {
      const { port } = s.address();
      s.close(() => resolve(port));
    });
  });
}

async function waitFor(url) {
  for (let i = 0; !(await fetch(url, { redirect: 'manual' }).then(() => true, () => false)); i++) {
    if (i === 200) throw new Error(`${url} did not answer`);
    await new Promise((r) => setTimeout(r, 50));
  }
}

function wrk(url, script) {
  const out = execFileSync('wrk', ['-t2', '-c16', `-d${seconds}s`, '--latency', '-s', script, url]).toString();
  const pick = (re) => out.match(re)?.[1] ?? '?';
  const errors = out.match(/Non-2xx or 3xx responses: (\d+)/)?.[1] ?? '0';
  return `${pick(/Requests\/sec:\s+([\d.]+)/).padStart(9)} req/s  p50 ${pick(/50%\s+([\d.]+\w+)/)}  ` +
    `p99 ${pick(/99%\s+([\d.]+\w+)/)}  non-3xx ${errors}`;
}

function nginxConf(work, port, servers) {
  return `daemon off;
worker_processes 1;
pid ${work}/nginx.pid;
error_log ${work}/nginx-error.log;
events { worker_connections 1024; }
http {
  access_log off;
  client_body_temp_path ${work}/body;
  proxy_temp_path ${work}/proxy;
  fastcgi_temp_path ${work}/fastcgi;
  uwsgi_temp_path ${work}/uwsgi;
  scgi_temp_path ${work}/scgi;
  upstream ostrakan_engine {
${servers.map((p) => `    server 127.0.0.1:${p};`).join('\n')}
    keepalive 16;
  }
  server {
    listen 127.0.0.1:${port};
    location ~* \\.asp$ {
      proxy_pass http://ostrakan_engine;
      proxy_set_header Host $http_host;
      proxy_set_header X-Real-IP $remote_addr;
      proxy_http_version 1.1;
      proxy_set_header Connection "";
    }
  }
}
`;
}

const work = mkdtempSync(join(tmpdir(), 'ostrakan-pgtwo-'));
const cluster = join('/tmp', `ostrakan-pgtwo-${process.pid}`);
const children = [];
execFileSync('bash', [clusterScript, 'start', cluster]);
try {
  const uri = `postgresql:///two?host=${cluster}&user=ostrakan`;
  execFileSync('psql', ['-q', `postgresql:///postgres?host=${cluster}&user=ostrakan`, '-c', 'CREATE DATABASE two']);
  const site = join(work, 'site');
  execFileSync(binary, ['init', site, '--password', 'secret123', '--database', uri]);
  execFileSync('psql', ['-q', uri], {
    input: `INSERT INTO db (title, content, url, source, source_url)
      SELECT '视频标题 ' || i, '描述 ' || i, 'video' || (i % 50) || '.test/play/' || i || '.html',
             '来源站点', 'video.test' FROM generate_series(1, ${records}) AS i; VACUUM ANALYZE;`,
  });
  const script = join(work, 'goto.lua');
  writeFileSync(script, `request = function()
  return wrk.format("GET", "/goto.asp?id=" .. math.random(1, ${records}))
end
`);
  const ports = [await freePort(), await freePort()];
  for (const port of ports) {
    const child = spawn(binary, ['serve', '--site', site, '--listen', `127.0.0.1:${port}`],
                        { stdio: ['ignore', 'ignore', 'inherit'] });
    children.push(child);
    await waitFor(`http://127.0.0.1:${port}/goto.asp?id=1`);
  }
  console.log(`goto.asp over ${records} records (wrk -t2 -c16 -d${seconds}s, random ids)`);
  console.log(`  one engine, no nginx        ${wrk(`http://127.0.0.1:${ports[0]}`, script)}`);
  for (const servers of [ports.slice(0, 1), ports]) {
    const port = await freePort();
    const conf = join(work, `nginx-${servers.length}.conf`);
    writeFileSync(conf, nginxConf(work, port, servers));
    const nginx = spawn('nginx', ['-c', conf, '-p', work], { stdio: ['ignore', 'ignore', 'inherit'] });
    children.push(nginx);
    await waitFor(`http://127.0.0.1:${port}/goto.asp?id=1`);
    const label = `nginx, ${servers.length} engine${servers.length > 1 ? 's' : ''}`.padEnd(27);
    console.log(`  ${label} ${wrk(`http://127.0.0.1:${port}`, script)}`);
    nginx.kill('SIGQUIT');
    await new Promise((r) => (nginx.exitCode !== null ? r() : nginx.once('exit', r)));
  }
  const clicks = execFileSync('psql', ['-qtA', uri, '-c', 'SELECT sum(click) FROM db']).toString().trim();
  console.log(`  clicks counted in the database: ${clicks}`);
} finally {
  for (const child of children) if (child.exitCode === null) child.kill('SIGTERM');
  await new Promise((r) => setTimeout(r, 300));
  execFileSync('bash', [clusterScript, 'stop', cluster]);
  rmSync(work, { recursive: true, force: true });
}
