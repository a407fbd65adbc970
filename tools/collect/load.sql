-- Stores one archive, all of it or nothing: `collect` runs this in a single transaction. Variables:
-- station, archive, size, modified (seconds since 1970), sha256, samples, and columns, those of the
-- comma-separated values on the standard input.
SET client_min_messages = warning;
SET search_path = pg_temp;

CREATE TEMPORARY TABLE incoming (:columns) ON COMMIT DROP;
\copy incoming FROM pstdin WITH (FORMAT csv, HEADER)
-- A table designed in another program may lack a column, but not Id, Data or Ora.
ALTER TABLE incoming
    ADD COLUMN IF NOT EXISTS senzor1 double precision,
    ADD COLUMN IF NOT EXISTS senzor2 double precision,
    ADD COLUMN IF NOT EXISTS senzor3 double precision,
    ADD COLUMN IF NOT EXISTS senzor4 double precision,
    ADD COLUMN IF NOT EXISTS senzor5 double precision,
    ADD COLUMN IF NOT EXISTS senzor6 double precision,
    ADD COLUMN IF NOT EXISTS alarma text;

SELECT autoclave.add_archive(:'station', :'archive', :size, to_timestamp(:modified),
                             decode(:'sha256', 'hex'), :samples,
                             ARRAY(SELECT DISTINCT date_trunc('month', data)::date FROM incoming
                                   WHERE data IS NOT NULL))
\g /dev/null

INSERT INTO autoclave.sample (moment, senzor1, senzor2, senzor3, senzor4, senzor5, senzor6, number,
                              alarm)
SELECT data::date
           -- Midnight is day 0 of the format without a time: jettool prints it as that day.
           + CASE WHEN ora LIKE '%-%' THEN ora::timestamp::time ELSE ora::time END,
       senzor1, senzor2, senzor3, senzor4, senzor5, senzor6, id,
       coalesce(alarma IN ('Yes', '1'), false) -- text as the station writes it, or a yes/no column
FROM incoming;
