-- The tables that `collect` fills. Run once by a superuser, in a database of their own:
--
--   psql -X -1 -v ON_ERROR_STOP=1 -d autoclaves -f schema.sql
--
-- `collect` never deletes or overwrites: a rewritten archive is stored beside its earlier version, which
-- is marked as replaced in the same transaction.

-- Roles that grant rights; a login becomes a member of one. They belong to the whole server, which
-- may have them already.
DO $$
DECLARE
    role text;
BEGIN
    FOREACH role IN ARRAY ARRAY['autoclave_owner', 'autoclave_collector', 'autoclave_reader'] LOOP
        IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = role) THEN
            EXECUTE format('CREATE ROLE %I NOLOGIN', role);
        END IF;
    END LOOP;
END $$;

CREATE SCHEMA autoclave AUTHORIZATION autoclave_owner;
SET ROLE autoclave_owner; -- so that no function below runs with a superuser's rights
SET search_path = autoclave;

CREATE TABLE station (
    id   integer GENERATED ALWAYS AS IDENTITY PRIMARY KEY,
    name text NOT NULL UNIQUE CHECK (name <> '')
);

-- One row per version of an archive file.
CREATE TABLE archive (
    id        integer GENERATED ALWAYS AS IDENTITY PRIMARY KEY,
    station   integer NOT NULL REFERENCES station,
    name      text NOT NULL,
    size      bigint NOT NULL,      -- bytes
    modified  timestamptz NOT NULL, -- the file's own time, whole seconds
    sha256    bytea NOT NULL CHECK (length(sha256) = 32),
    samples   integer NOT NULL CHECK (samples >= 0),
    arrived   integer NOT NULL DEFAULT 0, -- samples in this database: all of them, once committed
    collected timestamptz NOT NULL DEFAULT now(),
    replaced  timestamptz           -- when a newer version was collected; null: the current one
);
CREATE UNIQUE INDEX archive_current ON archive (station, name) WHERE replaced IS NULL;

-- The station of the version that a session announced: its currval() is the session's own.
CREATE SEQUENCE announced_station;

-- One row per sample. Columns are ordered by width: no padding.
CREATE TABLE sample (
    moment  timestamp NOT NULL, -- the station's wall clock: its files know no time zone
    senzor1 double precision,   -- degrees Celsius; null: the file has no value
    senzor2 double precision,
    senzor3 double precision,
    senzor4 double precision,
    senzor5 double precision,
    senzor6 double precision,
    -- Those this session has announced with add_archive(). The collector may not set them: no foreign
    -- keys, as only the owner could name others.
    station integer NOT NULL DEFAULT currval('announced_station'),
    archive integer NOT NULL DEFAULT currval('archive_id_seq'),
    number  integer NOT NULL,   -- Id, which tells samples of one second apart
    alarm   boolean NOT NULL
) PARTITION BY RANGE (moment);
-- A station's day is one range, however many archives the station has. No further column: the server
-- fills the pages at each station's end for keys of up to 16 bytes, and leaves them half empty for others.
CREATE INDEX sample_day ON sample (station, moment);
CREATE INDEX sample_alarm ON sample (moment) WHERE alarm; -- alarms of all stations

-- The samples of the current versions: what queries start from.
CREATE VIEW current_sample AS
SELECT station.name AS station, moment, senzor1, senzor2, senzor3, senzor4, senzor5, senzor6, alarm,
       archive.name AS archive, number
FROM sample
JOIN archive ON archive.id = sample.archive AND archive.replaced IS NULL
JOIN station ON station.id = sample.station;

-- Makes the partition of the month that begins on that day, unless it is there.
CREATE FUNCTION make_month(month date) RETURNS void
LANGUAGE plpgsql SET search_path = autoclave, pg_temp AS $$
DECLARE
    partition text := to_char(month, '"sample_"YYYY_MM');
BEGIN
    IF to_regclass(partition) IS NOT NULL THEN
        RETURN;
    END IF;
    -- Another collector may be making it now. Once this lock is granted what it made is seen; after an
    -- advisory lock it would not be.
    LOCK TABLE sample IN SHARE UPDATE EXCLUSIVE MODE;
    IF to_regclass(partition) IS NULL THEN
        -- Attached afterwards: CREATE ... PARTITION OF would lock out all readers.
        EXECUTE format('CREATE TABLE %I (LIKE sample)', partition);
        EXECUTE format('ALTER TABLE sample ATTACH PARTITION %I FOR VALUES FROM (%L) TO (%L)',
                       partition, month, month + interval '1 month');
    END IF;
END $$;

-- Announces a new version of an archive, for the samples that follow in the same transaction; an
-- earlier version is replaced from its commit on. Each of `months` is the first day of a month that
-- the samples fall into.
CREATE FUNCTION add_archive(station_name text, archive_name text, size bigint, modified timestamptz,
                            sha256 bytea, samples integer, months date[]) RETURNS void
LANGUAGE plpgsql SECURITY DEFINER SET search_path = autoclave, pg_temp AS $$
DECLARE
    month date;
    station_id integer;
BEGIN
    FOREACH month IN ARRAY months LOOP
        PERFORM make_month(date_trunc('month', month)::date);
    END LOOP;
    SELECT id INTO station_id FROM station WHERE name = station_name;
    IF NOT FOUND THEN
        INSERT INTO station (name) VALUES (station_name) RETURNING id INTO station_id;
    END IF;
    -- The same bytes again, from two collectors at once, replace nothing: the index refuses them.
    UPDATE archive SET replaced = now()
    WHERE station = station_id AND name = archive_name AND replaced IS NULL
      AND archive.sha256 <> add_archive.sha256;
    INSERT INTO archive (station, name, size, modified, sha256, samples)
    VALUES (station_id, archive_name, add_archive.size, add_archive.modified, add_archive.sha256,
            add_archive.samples);
    PERFORM setval('announced_station', station_id);
END $$;

CREATE FUNCTION count_samples() RETURNS trigger
LANGUAGE plpgsql SECURITY DEFINER SET search_path = autoclave, pg_temp AS $$
BEGIN
    UPDATE archive SET arrived = arrived + (SELECT count(*) FROM added)
    WHERE id = currval('archive_id_seq');
    IF NOT FOUND THEN -- its transaction was rolled back
        RAISE EXCEPTION 'samples of no announced archive';
    END IF;
    RETURN NULL;
END $$;
CREATE TRIGGER counted AFTER INSERT ON sample REFERENCING NEW TABLE AS added
FOR EACH STATEMENT EXECUTE FUNCTION count_samples();

-- At every commit, whoever loads: an archive has as many samples as it says, or is not there at all.
CREATE FUNCTION require_all_samples() RETURNS trigger
LANGUAGE plpgsql SECURITY DEFINER SET search_path = autoclave, pg_temp AS $$
DECLARE
    arrived integer := (SELECT archive.arrived FROM archive WHERE id = NEW.id);
BEGIN
    IF arrived <> NEW.samples THEN
        RAISE EXCEPTION '% of % samples arrived', arrived, NEW.samples;
    END IF;
    RETURN NULL;
END $$;
CREATE CONSTRAINT TRIGGER all_samples AFTER INSERT OR UPDATE OF arrived ON archive
DEFERRABLE INITIALLY DEFERRED FOR EACH ROW EXECUTE FUNCTION require_all_samples();

REVOKE EXECUTE ON ALL FUNCTIONS IN SCHEMA autoclave FROM PUBLIC;
GRANT USAGE ON SCHEMA autoclave TO autoclave_collector, autoclave_reader;
-- The collector sees which archives there are, and no sample.
GRANT SELECT ON station, archive TO autoclave_collector, autoclave_reader;
GRANT SELECT ON sample, current_sample TO autoclave_reader;
GRANT EXECUTE ON FUNCTION add_archive TO autoclave_collector;
-- currval(), not nextval().
GRANT SELECT ON SEQUENCE archive_id_seq, announced_station TO autoclave_collector;
GRANT INSERT (moment, senzor1, senzor2, senzor3, senzor4, senzor5, senzor6, number, alarm)
    ON sample TO autoclave_collector;

RESET ROLE;
