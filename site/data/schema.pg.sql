-- The site database on PostgreSQL: the same tables, defaults and indexes as schema.sql.
-- Text columns are citext, so that comparisons, LIKE and ORDER BY ignore letter case as the
-- pages expect; dates are timestamps without time zone, in local time, to the second.
-- Every statement may run again on a database made by an earlier version.
CREATE EXTENSION IF NOT EXISTS citext;

-- Administrator accounts; password holds the MD5 digest (32 lower-case hex characters).
CREATE TABLE IF NOT EXISTS admin (
  id SERIAL PRIMARY KEY,
  username citext,
  password citext,
  login_ip citext,
  login_time timestamp(0)
);
CREATE INDEX IF NOT EXISTS admin_username ON admin (username);

-- Categories: sort_id 0 marks the first level; second-level rows name their parent and the
-- letter group (alphabetical.id) they are listed under.
CREATE TABLE IF NOT EXISTS sort (
  id SERIAL PRIMARY KEY,
  sort citext,
  sort_id integer DEFAULT 0,
  alphabetical_id integer DEFAULT 0
);
CREATE INDEX IF NOT EXISTS sort_parent_letter ON sort (sort_id, alphabetical_id, sort);

-- The letter groups of second-level categories.
CREATE TABLE IF NOT EXISTS alphabetical (
  id SERIAL PRIMARY KEY,
  alphabetical citext
);
INSERT INTO alphabetical (alphabetical)
SELECT chr(64 + n) FROM generate_series(1, 26) AS n
WHERE NOT EXISTS (SELECT 1 FROM alphabetical)
ORDER BY n;

-- What visitors searched for, and how often.
CREATE TABLE IF NOT EXISTS keyword (
  id SERIAL PRIMARY KEY,
  keyword citext,
  hot integer DEFAULT 0
);
CREATE INDEX IF NOT EXISTS keyword_keyword ON keyword (keyword);
CREATE INDEX IF NOT EXISTS keyword_hot ON keyword (hot);
-- Each word is counted in one row: the search adds a word or adds one to its count.
CREATE UNIQUE INDEX IF NOT EXISTS keyword_unique ON keyword (keyword);

-- Video records. url and source_url are stored without "http://".
CREATE TABLE IF NOT EXISTS db (
  id SERIAL PRIMARY KEY,
  title citext,
  content citext,
  url citext,
  image citext DEFAULT NULL,
  source citext,
  source_url citext,
  click integer DEFAULT 0,
  time timestamp(0) DEFAULT LOCALTIMESTAMP(0)
);
CREATE INDEX IF NOT EXISTS db_url ON db (url);
CREATE INDEX IF NOT EXISTS db_source_url ON db (source_url);
CREATE INDEX IF NOT EXISTS db_title ON db (title);
CREATE INDEX IF NOT EXISTS db_click_time_title ON db (click, time, title);

-- The exact number of rows of db, kept by statement-level triggers (below, with the record
-- index) in the writer's own transaction: PostgreSQL counts a table by reading all of it, so the
-- record list's "select count(*) from db" reads this row instead (the statement adapter of the
-- program). Writers of db wait for one another on the row until they commit, as they do for
-- the write lock anyway.
CREATE TABLE IF NOT EXISTS row_count (
  name text PRIMARY KEY,
  n bigint NOT NULL
);
CREATE OR REPLACE FUNCTION row_count_emptied() RETURNS trigger LANGUAGE plpgsql AS $$
BEGIN
  UPDATE row_count SET n = 0 WHERE name = TG_TABLE_NAME;
  RETURN NULL;
END $$;
-- A database made before the count starts from the rows it holds.
INSERT INTO row_count (name, n) SELECT 'db', (SELECT count(*) FROM db)
WHERE NOT EXISTS (SELECT 1 FROM row_count WHERE name = 'db');
CREATE OR REPLACE TRIGGER db_rows_emptied AFTER TRUNCATE ON db
  FOR EACH STATEMENT EXECUTE FUNCTION row_count_emptied();

-- List-site gathering rules: every field but id is text.
CREATE TABLE IF NOT EXISTS gather_list_web (
  id SERIAL PRIMARY KEY,
  web citext,
  url citext,
  gather_url citext,
  next_page citext,
  charset citext,
  error_html citext,
  cyc_border citext,
  cyc_border_sn citext,
  image_start citext,
  image_end citext,
  url_start citext,
  url_end citext,
  url_filtration citext,
  v_url citext,
  title_start citext,
  title_end citext,
  title_filtration citext,
  content_start citext,
  content_end citext,
  content_filtration citext
);

-- ID-site gathering rules; range holds "first - last" of the last completed run.
CREATE TABLE IF NOT EXISTS gather_id_web (
  id SERIAL PRIMARY KEY,
  web citext,
  url citext,
  gather_url citext,
  charset citext,
  error_html citext,
  title_start citext,
  title_end citext,
  content_start citext,
  content_end citext,
  "range" citext
);

-- Headless gathering runs ("ostrakan gather"): one row per run, kept up to date after every
-- page, so that a stopped run can be resumed at `next`; `finished` stays NULL until it ends.
CREATE TABLE IF NOT EXISTS gather_run (
  id SERIAL PRIMARY KEY,
  kind text NOT NULL,
  rule_id integer NOT NULL,
  keyword text,
  first integer NOT NULL,
  last integer NOT NULL,
  next integer NOT NULL,
  pages integer DEFAULT 0,
  entries integer DEFAULT 0,
  inserted integer DEFAULT 0,
  updated integer DEFAULT 0,
  no_results integer DEFAULT 0,
  failed integer DEFAULT 0,
  started timestamp(0),
  finished timestamp(0),
  state text,
  unmatched integer DEFAULT 0,
  queued integer DEFAULT 0,
  delay_ms integer DEFAULT 1000,
  retries integer DEFAULT 2,
  retry_pause_ms integer DEFAULT 1000
);
-- Columns that the run queue added to a database made before it.
ALTER TABLE gather_run ADD COLUMN IF NOT EXISTS state text;
ALTER TABLE gather_run ADD COLUMN IF NOT EXISTS unmatched integer DEFAULT 0;
ALTER TABLE gather_run ADD COLUMN IF NOT EXISTS queued integer DEFAULT 0;
ALTER TABLE gather_run ADD COLUMN IF NOT EXISTS delay_ms integer DEFAULT 1000;
ALTER TABLE gather_run ADD COLUMN IF NOT EXISTS retries integer DEFAULT 2;
ALTER TABLE gather_run ADD COLUMN IF NOT EXISTS retry_pause_ms integer DEFAULT 1000;
CREATE INDEX IF NOT EXISTS gather_run_rule ON gather_run (kind, rule_id, finished);

-- The run queue: one row per page or ID of a queued run. A worker leases a unit (lease_owner,
-- lease_until in milliseconds since the epoch) by a conditional update; state is queued, done,
-- failed or stopped; a failed fetch waits until not_before before it is tried again.
CREATE TABLE IF NOT EXISTS gather_unit (
  run_id integer NOT NULL,
  unit integer NOT NULL,
  host text NOT NULL,
  state text NOT NULL,
  attempts integer DEFAULT 0,
  not_before bigint DEFAULT 0,
  lease_owner text,
  lease_until bigint,
  why text,
  PRIMARY KEY (run_id, unit)
);
CREATE INDEX IF NOT EXISTS gather_unit_state ON gather_unit (state, not_before);

-- Politeness between workers: one fetch at a time per remote host (the lease), and not before
-- next_at (the run's pause after the previous fetch).
CREATE TABLE IF NOT EXISTS gather_host (
  host text PRIMARY KEY,
  lease_owner text,
  lease_until bigint,
  next_at bigint DEFAULT 0
);

-- Schedules: runs that queue themselves; due_at in milliseconds since the epoch.
CREATE TABLE IF NOT EXISTS gather_schedule (
  id SERIAL PRIMARY KEY,
  kind text NOT NULL,
  rule_id integer NOT NULL,
  keywords text,
  first integer,
  last integer,
  next_count integer,
  every_seconds integer,
  cron text,
  due_at bigint NOT NULL,
  delay_ms integer,
  retries integer,
  retry_pause_ms integer
);

-- Rules whose last run matched none of the pages it fetched: since when, and an address.
CREATE TABLE IF NOT EXISTS gather_rule_health (
  kind text NOT NULL,
  rule_id integer NOT NULL,
  since timestamp(0),
  sample text,
  PRIMARY KEY (kind, rule_id)
);

-- Sessions of the site's servers, so that any server of a site on PostgreSQL answers any
-- request: the session's items as text, whether an administrator is signed in, and when it
-- expires (local time; an expired row is ignored and swept).
CREATE TABLE IF NOT EXISTS web_session (
  id text PRIMARY KEY,
  items text NOT NULL,
  code_page integer NOT NULL,
  timeout integer NOT NULL,
  signed_in integer NOT NULL DEFAULT 0,
  expires timestamp(0) NOT NULL
);
CREATE INDEX IF NOT EXISTS web_session_expires ON web_session (expires);

-- Failed sign-ins by client address, counted by every server of the site (the sign-in
-- throttle); rows older than a day are swept.
CREATE TABLE IF NOT EXISTS sign_in_failure (
  address text NOT NULL,
  at timestamp(0) NOT NULL
);
CREATE INDEX IF NOT EXISTS sign_in_failure_address ON sign_in_failure (address, at);

-- The record index: a copy of every record's title and description under GIN indexes of
-- their keys, so that a search looks at the records that hold every character pair of its
-- word, and checks them with LIKE there, instead of reading all of db. A text's keys are its
-- characters and its pairs of neighbouring characters, taken from the text lower-cased by
-- lower(), as LIKE on citext compares (so a word matches a text only if the text has the
-- word's keys). A character's key is its code point cut to 16 bits; a pair's is the two codes
-- folded into 18 bits, which keeps the GIN indexes about half as large and cheaper to add to
-- than one key per distinct pair. A key that two texts share by the cut or the fold only offers
-- a record that the search then drops, for it checks every record it is offered with LIKE.
-- The keys are not stored: the indexes hold them, and a search that reads the copy finds the
-- text to check beside the id, without a look at db.
CREATE OR REPLACE FUNCTION db_gram_codes(s text) RETURNS integer[]
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE AS $$
  SELECT ARRAY(SELECT ascii(c) & 65535 FROM unnest(string_to_array(lower(s), NULL)) AS c)
$$;

-- A database indexed by an earlier version (its keys stored in db_gram, without the texts) is
-- indexed again by the last statement of this file.
DO $$
BEGIN
  IF to_regclass('db_gram') IS NOT NULL AND NOT EXISTS (
      SELECT 1 FROM pg_catalog.pg_attribute
      WHERE attrelid = to_regclass('db_gram') AND attname = 'title') THEN
    DROP TABLE db_gram;
  END IF;
END
$$;
DROP FUNCTION IF EXISTS db_gram_word(text);
DROP FUNCTION IF EXISTS db_gram_keys(text, text);

-- The keys of a text (a key may occur twice; the index takes it once). The index expressions
-- run this for every record written, so it is one loop of plain assignments: no query inside
-- (each would be started afresh for every call) and no call of db_gram_codes (a function in
-- SQL, planned again in every transaction that calls it).
CREATE OR REPLACE FUNCTION db_gram_text(s text) RETURNS integer[]
LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
DECLARE
  keys integer[] := '{}';
  ch text;
  code integer;
  previous integer;
  pair integer;
BEGIN
  FOREACH ch IN ARRAY coalesce(string_to_array(lower(s), NULL), '{}') LOOP
    code := ascii(ch) & 65535;
    keys := keys || code;
    IF previous IS NOT NULL THEN
      pair := (previous << 16) | code;
      keys := keys || ((pair # (pair >> 13)) & 262143);
    END IF;
    previous := code;
  END LOOP;
  RETURN keys;
END
$$;

-- The keys that a text holding the literal piece `s` of a word must have: its pairs, or its
-- one character.
CREATE OR REPLACE FUNCTION db_gram_piece(s text) RETURNS integer[]
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  codes integer[] := db_gram_codes(s);
  keys integer[] := '{}';
  pair integer;
BEGIN
  IF cardinality(codes) = 1 THEN
    RETURN codes;
  END IF;
  FOR i IN 1 .. cardinality(codes) - 1 LOOP
    pair := (codes[i] << 16) | codes[i + 1];
    keys := keys || ((pair # (pair >> 13)) & 262143);
  END LOOP;
  RETURN keys;
END
$$;

-- One row per record of db, its title and description as db held them when the index last
-- took the record in (equal as citext).
CREATE TABLE IF NOT EXISTS db_gram (
  id integer PRIMARY KEY,
  title citext,
  content citext
);
CREATE INDEX IF NOT EXISTS db_gram_title ON db_gram USING gin (db_gram_text(title));
CREATE INDEX IF NOT EXISTS db_gram_content ON db_gram USING gin (db_gram_text(content));

-- The records written since the index last took them in: the ids of rows added, removed,
-- renumbered or given another title or description (an id may be noted more than once). A
-- write to db only notes its records here, which costs a fraction of keeping the GIN indexes
-- for each; db_gram_take_in takes them in later, many in one statement, and a search reads
-- the noted records from db itself meanwhile, so it never misses one nor finds an old text.
-- No index: a note is one row appended, and a search reads the few waiting ids whole.
CREATE TABLE IF NOT EXISTS db_gram_pending (
  id integer NOT NULL
);

-- Rows added to db and rows removed from it: the count, and the notes for the index, once per
-- statement for all its rows (a statement of one row pays one trigger, a bulk load one
-- set-wise insert).
CREATE OR REPLACE FUNCTION db_rows_added() RETURNS trigger LANGUAGE plpgsql AS $$
BEGIN
  UPDATE row_count SET n = n + (SELECT count(*) FROM added) WHERE name = 'db';
  INSERT INTO db_gram_pending (id) SELECT id FROM added;
  RETURN NULL;
END $$;
CREATE OR REPLACE FUNCTION db_rows_removed() RETURNS trigger LANGUAGE plpgsql AS $$
BEGIN
  UPDATE row_count SET n = n - (SELECT count(*) FROM removed) WHERE name = 'db';
  INSERT INTO db_gram_pending (id) SELECT id FROM removed;
  RETURN NULL;
END $$;
CREATE OR REPLACE TRIGGER db_rows_added AFTER INSERT ON db REFERENCING NEW TABLE AS added
  FOR EACH STATEMENT EXECUTE FUNCTION db_rows_added();
CREATE OR REPLACE TRIGGER db_rows_removed AFTER DELETE ON db REFERENCING OLD TABLE AS removed
  FOR EACH STATEMENT EXECUTE FUNCTION db_rows_removed();
-- (The count's functions of an earlier version, replaced by these.)
DROP FUNCTION IF EXISTS row_count_added();
DROP FUNCTION IF EXISTS row_count_removed();

-- A changed title, description or id: row by row, and only for statements that set one of
-- them (a click's update of db.click, or a refresh of db.time, fires nothing).
CREATE OR REPLACE FUNCTION db_gram_sync() RETURNS trigger
LANGUAGE plpgsql AS $$
BEGIN
  IF NEW.id = OLD.id AND NEW.title IS NOT DISTINCT FROM OLD.title
     AND NEW.content IS NOT DISTINCT FROM OLD.content THEN
    RETURN NULL;  -- equal as citext: the same lower-cased text, the same keys
  END IF;
  INSERT INTO db_gram_pending (id) VALUES (NEW.id);
  IF NEW.id <> OLD.id THEN
    INSERT INTO db_gram_pending (id) VALUES (OLD.id);
  END IF;
  RETURN NULL;
END
$$;
CREATE OR REPLACE TRIGGER db_gram_sync AFTER UPDATE OF id, title, content
ON db FOR EACH ROW EXECUTE FUNCTION db_gram_sync();

CREATE OR REPLACE FUNCTION db_gram_clear() RETURNS trigger
LANGUAGE plpgsql AS $$
BEGIN
  TRUNCATE db_gram, db_gram_pending;
  RETURN NULL;
END
$$;
CREATE OR REPLACE TRIGGER db_gram_clear AFTER TRUNCATE ON db
FOR EACH STATEMENT EXECUTE FUNCTION db_gram_clear();

-- Takes up to `most` noted records into the index when at least `at_least` wait, in one
-- statement: the notes it removes are exactly the ones it takes in (a note made meanwhile, by
-- a writer that commits later, stays for the next time), and each record's copy becomes what
-- db holds (none for a record no longer there). Take-ins run one at a time (the advisory lock
-- 7031854, not the writers' lock, so that writers of db never wait for one): `wait` false
-- returns 0 at once when another is under way. Returns the number of records taken in.
CREATE OR REPLACE FUNCTION db_gram_take_in(at_least integer, most integer, wait boolean)
RETURNS integer LANGUAGE plpgsql AS $$
DECLARE
  taken integer;
BEGIN
  IF (SELECT count(*) FROM (SELECT 1 FROM db_gram_pending LIMIT at_least) AS w) < at_least THEN
    RETURN 0;
  END IF;
  IF wait THEN
    PERFORM pg_advisory_xact_lock(7031854);
  ELSIF NOT pg_try_advisory_xact_lock(7031854) THEN
    RETURN 0;
  END IF;
  -- (A statement of its own, after the lock: it sees every earlier take-in's work.)
  WITH noted AS (
    DELETE FROM db_gram_pending
    WHERE ctid = ANY (ARRAY(SELECT ctid FROM db_gram_pending LIMIT most))
    RETURNING id
  ), records AS (
    SELECT DISTINCT id FROM noted
  ), gone AS (
    DELETE FROM db_gram USING records
    WHERE db_gram.id = records.id AND NOT EXISTS (SELECT 1 FROM db WHERE db.id = records.id)
  ), copied AS (
    INSERT INTO db_gram (id, title, content)
    SELECT db.id, db.title, db.content FROM db JOIN records USING (id)
    ON CONFLICT (id) DO UPDATE SET title = EXCLUDED.title, content = EXCLUDED.content
    WHERE db_gram.title IS DISTINCT FROM EXCLUDED.title
       OR db_gram.content IS DISTINCT FROM EXCLUDED.content
  )
  SELECT count(*) INTO taken FROM records;
  RETURN taken;
END
$$;

-- The records of a database made before the index.
INSERT INTO db_gram (id, title, content)
SELECT id, title, content FROM db
WHERE NOT EXISTS (SELECT 1 FROM db_gram WHERE db_gram.id = db.id);

-- One gathered entry stored in one round trip to the server: under the site's write lock (the
-- advisory lock that the program's write transactions take, 7031853), the record with the
-- link `link` is looked up; a new link is inserted, a known one refreshed: its time alone when
-- its title and description are already exactly those given, else those and its time.
-- Returns 1 for a known link, 0 for a new one. The values come as the program cut them.
CREATE OR REPLACE FUNCTION db_store_entry(entry_title text, entry_content text, link text,
                                          entry_image text, entry_source text,
                                          entry_source_url text, stored timestamp)
RETURNS integer LANGUAGE plpgsql AS $$
DECLARE
  known record;
BEGIN
  PERFORM pg_advisory_xact_lock(7031853);
  SELECT id, title, content INTO known FROM db WHERE url = link::citext LIMIT 1;
  IF NOT FOUND THEN
    INSERT INTO db (title, content, url, image, source, source_url, click, time)
    VALUES (entry_title, entry_content, link, entry_image, entry_source, entry_source_url, 0,
            stored);
    RETURN 0;
  END IF;
  IF coalesce(known.title::text = entry_title AND known.content::text = entry_content, false) THEN
    UPDATE db SET time = stored WHERE id = known.id;
  ELSE
    UPDATE db SET title = entry_title, content = entry_content, time = stored WHERE id = known.id;
  END IF;
  RETURN 1;
END
$$;

-- The entries of one gathered page stored in one call, each as db_store_entry stores it and in
-- their order, under the same lock: returns for each 1 (a known link) or 0 (a new one). The
-- new records are inserted together at the end, in their order, so that the count and the
-- record index are written once for all; a link that an earlier entry of the call adds is
-- known to the later ones (the later refreshes the record to be added).
CREATE OR REPLACE FUNCTION db_store_entries(titles text[], contents text[], links text[],
                                            images text[], entry_source text,
                                            entry_source_url text, stored timestamp)
RETURNS integer[] LANGUAGE plpgsql AS $$
DECLARE
  known record;
  outcomes integer[] := '{}';
  new_links citext[] := '{}';
  new_titles text[] := '{}';
  new_contents text[] := '{}';
  new_images text[] := '{}';
  at integer;
BEGIN
  PERFORM pg_advisory_xact_lock(7031853);
  FOR i IN 1 .. coalesce(cardinality(links), 0) LOOP
    at := array_position(new_links, links[i]::citext);
    IF at IS NOT NULL THEN
      new_titles[at] := titles[i];
      new_contents[at] := contents[i];
      outcomes := outcomes || 1;
      CONTINUE;
    END IF;
    SELECT id, title, content INTO known FROM db WHERE url = links[i]::citext LIMIT 1;
    IF NOT FOUND THEN
      new_links := new_links || links[i]::citext;
      new_titles := new_titles || titles[i];
      new_contents := new_contents || contents[i];
      new_images := new_images || images[i];
      outcomes := outcomes || 0;
      CONTINUE;
    END IF;
    IF coalesce(known.title::text = titles[i] AND known.content::text = contents[i], false) THEN
      UPDATE db SET time = stored WHERE id = known.id;
    ELSE
      UPDATE db SET title = titles[i], content = contents[i], time = stored WHERE id = known.id;
    END IF;
    outcomes := outcomes || 1;
  END LOOP;
  IF cardinality(new_links) > 0 THEN
    INSERT INTO db (title, content, url, image, source, source_url, click, time)
    SELECT t, c, u, im, entry_source, entry_source_url, 0, stored
    FROM unnest(new_titles, new_contents, new_links, new_images) AS e(t, c, u, im);
  END IF;
  RETURN outcomes;
END
$$;
