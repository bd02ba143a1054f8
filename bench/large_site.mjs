// The large tables of the list-page benchmarks, filled straight into a site's database with
// the sqlite3 command-line shell (Debian package sqlite3).
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';

// Fills db with `records` rows (one title in 1,000 holds the word 功夫) and keyword with a
// tenth as many words.
export function fill(site, records) {
  const keywords = Math.max(1, Math.floor(records / 10));
  const sql = `
    PRAGMA journal_mode = WAL;
    BEGIN;
    WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ${records})
    INSERT INTO db (title, content, url, source, source_url, click, time)
    SELECT '视频标题 ' || i || CASE WHEN i % 1000 = 0 THEN ' 功夫' ELSE '' END,
           '这是第 ' || i || ' 条视频的描述文字。',
           'video' || (i % 50) || '.test/play/' || i || '.html',
           '来源站点' || (i % 50), 'video' || (i % 50) || '.test',
           i % 997, datetime('2026-01-01', '+' || (i % 300) || ' days')
    FROM n;
    WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ${keywords})
    INSERT INTO keyword (keyword, hot) SELECT '关键词' || i, i % 5000 FROM n;
    COMMIT;`;
  execFileSync('sqlite3', [join(site, 'data', 'ostrakan.db')], { input: sql });
  return keywords;
}

