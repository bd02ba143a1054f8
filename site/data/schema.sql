-- The site database: the seven tables of the administration pages and the front end.
-- Text compares without regard to letter case, as the pages expect of their database;
-- dates are stored as local time in the text form 'yyyy-mm-dd hh:mm:ss'.
PRAGMA journal_mode = WAL;

-- Administrator accounts; password holds the MD5 digest (32 lower-case hex characters).
CREATE TABLE admin (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  username TEXT COLLATE NOCASE,
  password TEXT COLLATE NOCASE,
  login_ip TEXT COLLATE NOCASE,
  login_time DATETIME
);
CREATE INDEX admin_username ON admin (username);

-- Categories: sort_id 0 marks the first level; second-level rows name their parent and the
-- letter group (alphabetical.id) they are listed under.
CREATE TABLE sort (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  sort TEXT COLLATE NOCASE,
  sort_id INTEGER DEFAULT 0,
  alphabetical_id INTEGER DEFAULT 0
);
CREATE INDEX sort_parent_letter ON sort (sort_id, alphabetical_id, sort);

-- The letter groups of second-level categories.
CREATE TABLE alphabetical (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  alphabetical TEXT COLLATE NOCASE
);
INSERT INTO alphabetical (alphabetical) VALUES
  ('A'), ('B'), ('C'), ('D'), ('E'), ('F'), ('G'), ('H'), ('I'), ('J'), ('K'), ('L'), ('M'),
  ('N'), ('O'), ('P'), ('Q'), ('R'), ('S'), ('T'), ('U'), ('V'), ('W'), ('X'), ('Y'), ('Z');

-- What visitors searched for, and how often.
CREATE TABLE keyword (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  keyword TEXT COLLATE NOCASE,
  hot INTEGER DEFAULT 0
);
CREATE INDEX keyword_keyword ON keyword (keyword);
CREATE INDEX keyword_hot ON keyword (hot);

-- Video records. url and source_url are stored without "http://".
CREATE TABLE db (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  title TEXT COLLATE NOCASE,
  content TEXT COLLATE NOCASE,
  url TEXT COLLATE NOCASE,
  image TEXT COLLATE NOCASE DEFAULT NULL,
  source TEXT COLLATE NOCASE,
  source_url TEXT COLLATE NOCASE,
  click INTEGER DEFAULT 0,
  time DATETIME DEFAULT (datetime('now', 'localtime'))
);
CREATE INDEX db_url ON db (url);
-- Also serves the prefix match "source_url like 'site%'" (LIKE ignores case, as NOCASE does).
CREATE INDEX db_source_url ON db (source_url);
CREATE INDEX db_title ON db (title);
-- Lists by clicks and time. With the title inside the index, a category page's
-- "title like '%name%' order by click desc, time desc" scans the index alone, newest of the
-- most clicked first, and reads only the (at most 100) rows it keeps.
CREATE INDEX db_click_time_title ON db (click, time, title);

-- List-site gathering rules: every field but id is text.
CREATE TABLE gather_list_web (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  web TEXT COLLATE NOCASE,
  url TEXT COLLATE NOCASE,
  gather_url TEXT COLLATE NOCASE,
  next_page TEXT COLLATE NOCASE,
  charset TEXT COLLATE NOCASE,
  error_html TEXT COLLATE NOCASE,
  cyc_border TEXT COLLATE NOCASE,
  cyc_border_sn TEXT COLLATE NOCASE,
  image_start TEXT COLLATE NOCASE,
  image_end TEXT COLLATE NOCASE,
  url_start TEXT COLLATE NOCASE,
  url_end TEXT COLLATE NOCASE,
  url_filtration TEXT COLLATE NOCASE,
  v_url TEXT COLLATE NOCASE,
  title_start TEXT COLLATE NOCASE,
  title_end TEXT COLLATE NOCASE,
  title_filtration TEXT COLLATE NOCASE,
  content_start TEXT COLLATE NOCASE,
  content_end TEXT COLLATE NOCASE,
  content_filtration TEXT COLLATE NOCASE
);

-- ID-site gathering rules; range holds "first - last" of the last completed run.
CREATE TABLE gather_id_web (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  web TEXT COLLATE NOCASE,
  url TEXT COLLATE NOCASE,
  gather_url TEXT COLLATE NOCASE,
  charset TEXT COLLATE NOCASE,
  error_html TEXT COLLATE NOCASE,
  title_start TEXT COLLATE NOCASE,
  title_end TEXT COLLATE NOCASE,
  content_start TEXT COLLATE NOCASE,
  content_end TEXT COLLATE NOCASE,
  "range" TEXT COLLATE NOCASE
);

-- Gathering runs ("ostrakan gather", and those queued for "ostrakan worker"): one row per
-- run, kept up to date after every page, so that a stopped run can be resumed at `next`;
-- `finished` stays NULL until it ends. `state` is queued, running, done or stopped; a queued
-- run (queued = 1) keeps the pacing its workers use. Sites made before the queue get the later
-- columns from the program when it first opens the database.
CREATE TABLE IF NOT EXISTS gather_run (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  kind TEXT NOT NULL,
  rule_id INTEGER NOT NULL,
  keyword TEXT,
  first INTEGER NOT NULL,
  last INTEGER NOT NULL,
  next INTEGER NOT NULL,
  pages INTEGER DEFAULT 0,
  entries INTEGER DEFAULT 0,
  inserted INTEGER DEFAULT 0,
  updated INTEGER DEFAULT 0,
  no_results INTEGER DEFAULT 0,
  failed INTEGER DEFAULT 0,
  started DATETIME,
  finished DATETIME,
  state TEXT,
  unmatched INTEGER DEFAULT 0,
  queued INTEGER DEFAULT 0,
  delay_ms INTEGER DEFAULT 1000,
  retries INTEGER DEFAULT 2,
  retry_pause_ms INTEGER DEFAULT 1000
);
CREATE INDEX IF NOT EXISTS gather_run_rule ON gather_run (kind, rule_id, finished);

-- The run queue: one row per page or ID of a queued run. A worker leases a unit (lease_owner,
-- lease_until in milliseconds since the epoch) by a conditional update; state is queued, done,
-- failed or stopped; a failed fetch waits until not_before before it is tried again.
CREATE TABLE IF NOT EXISTS gather_unit (
  run_id INTEGER NOT NULL,
  unit INTEGER NOT NULL,
  host TEXT NOT NULL,
  state TEXT NOT NULL,
  attempts INTEGER DEFAULT 0,
  not_before INTEGER DEFAULT 0,
  lease_owner TEXT,
  lease_until INTEGER,
  why TEXT,
  PRIMARY KEY (run_id, unit)
);
CREATE INDEX IF NOT EXISTS gather_unit_state ON gather_unit (state, not_before);

-- Politeness between workers: one fetch at a time per remote host (the lease), and not before
-- next_at (the run's pause after the previous fetch).
CREATE TABLE IF NOT EXISTS gather_host (
  host TEXT PRIMARY KEY,
  lease_owner TEXT,
  lease_until INTEGER,
  next_at INTEGER DEFAULT 0
);

-- Schedules: runs that queue themselves (see "ostrakan schedule"). keywords are one per line;
-- next_count is how many numbers an ID schedule gathers after the rule's last range; due_at
-- is in milliseconds since the epoch.
CREATE TABLE IF NOT EXISTS gather_schedule (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  kind TEXT NOT NULL,
  rule_id INTEGER NOT NULL,
  keywords TEXT,
  first INTEGER,
  last INTEGER,
  next_count INTEGER,
  every_seconds INTEGER,
  cron TEXT,
  due_at INTEGER NOT NULL,
  delay_ms INTEGER,
  retries INTEGER,
  retry_pause_ms INTEGER
);

-- Rules whose last run matched none of the pages it fetched: since when, and an address.
CREATE TABLE IF NOT EXISTS gather_rule_health (
  kind TEXT NOT NULL,
  rule_id INTEGER NOT NULL,
  since DATETIME,
  sample TEXT,
  PRIMARY KEY (kind, rule_id)
);
-- Each word is counted in one row: the search adds a word or adds one to its count.
CREATE UNIQUE INDEX IF NOT EXISTS keyword_unique ON keyword (keyword);

-- The record index: the words of every record's title and description, for the searches
-- "title or description contains a word". It holds no text of its own (it reads db). Its
-- tokenizer "ostrakan" (every character and every pair of neighbouring characters) is
-- installed on each connection of Ostrakan (to search it from the sqlite3 shell, ".load
-- libostrakan_tokenizer"). The triggers below do not touch it: they note each changed record
-- in db_index_pending (with the text the index holds for it, when it holds any), and the
-- index takes the noted records in, many at a time, when a search finds many waiting;
-- searches look at the waiting records directly meanwhile. `ostrakan reindex` rebuilds it.
CREATE VIRTUAL TABLE IF NOT EXISTS db_index USING fts5(
  title, content, content='db', content_rowid='id', tokenize='ostrakan', columnsize=0);
-- indexed 1: the index holds old_title and old_content for the record; 0: nothing.
CREATE TABLE IF NOT EXISTS db_index_pending (
  id INTEGER PRIMARY KEY,
  indexed INTEGER NOT NULL,
  old_title TEXT,
  old_content TEXT
);
-- OR IGNORE (a record already noted stays as noted) rather than ON CONFLICT DO NOTHING: with
-- no constraint left that could abort it, a write to db inside a transaction needs no
-- statement journal (a copy of every page the statement changes, about a fifth of the cost of
-- a gathering run's insert).
CREATE TRIGGER IF NOT EXISTS db_index_insert AFTER INSERT ON db BEGIN
  INSERT OR IGNORE INTO db_index_pending (id, indexed) VALUES (new.id, 0);
END;
CREATE TRIGGER IF NOT EXISTS db_index_delete AFTER DELETE ON db BEGIN
  INSERT OR IGNORE INTO db_index_pending (id, indexed, old_title, old_content)
    VALUES (old.id, 1, old.title, old.content);
END;
CREATE TRIGGER IF NOT EXISTS db_index_update AFTER UPDATE OF id, title, content ON db BEGIN
  INSERT OR IGNORE INTO db_index_pending (id, indexed, old_title, old_content)
    VALUES (old.id, 1, old.title, old.content);
  INSERT OR IGNORE INTO db_index_pending (id, indexed) VALUES (new.id, 0);
END;
