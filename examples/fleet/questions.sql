-- Questions to a fleet, for SQLite and DuckDB alike. Each begins with its name behind two dashes and a colon.

--: slowest graphs by version
SELECT r.header_backend_version AS version, g.name AS graph, count(*) AS runs, avg(g.spread_median_us) AS median_us
FROM runs r JOIN graphs g ON g.run_id = r.run_id
GROUP BY r.header_backend_version, g.name
ORDER BY median_us DESC, version, graph
LIMIT 10;

--: layers that grew from the first version to the last
WITH versions AS (
    SELECT min(header_backend_version) AS first, max(header_backend_version) AS last
    FROM runs WHERE level IS NOT NULL),
times AS (
    SELECT r.header_backend_version AS version, g.name AS graph, z.name AS layer, avg(z.dsp_us + z.krel_us) AS us
    FROM runs r JOIN graphs g ON g.run_id = r.run_id
    JOIN zeb_layers z ON z.run_id = g.run_id AND z.graph = g.graph
    GROUP BY r.header_backend_version, g.name, z.name)
SELECT o.graph AS graph, o.layer AS layer, o.us AS first_us, n.us AS last_us, n.us - o.us AS grown_us
FROM versions v JOIN times o ON o.version = v.first
JOIN times n ON n.version = v.last AND n.graph = o.graph AND n.layer = o.layer
WHERE n.us > o.us
ORDER BY grown_us DESC, graph, layer
LIMIT 10;

--: p90 of an execution by site
WITH ordered AS (
    SELECT l.value AS site, e.duration_us AS us,
        row_number() OVER (PARTITION BY l.value ORDER BY e.duration_us) - 1 AS place,
        9 * (count(*) OVER (PARTITION BY l.value) - 1) AS tenths
    FROM executions e JOIN labels l ON l.run_id = e.run_id AND l.key = 'site'
    WHERE e.duration_us > 0)
SELECT site, CAST(sum(us * CASE WHEN 10 * place = tenths - tenths % 10 THEN 10 - tenths % 10
                           ELSE tenths % 10 END) AS DOUBLE) / 10 AS p90_us
FROM ordered
WHERE 10 * place IN (tenths - tenths % 10, tenths - tenths % 10 + 10)
GROUP BY site
ORDER BY site;

--: runs with a finding
SELECT rule, count(DISTINCT run_id) AS runs
FROM findings
GROUP BY rule
ORDER BY rule;

--: share of the DSP's time by type of layer
SELECT type_name, 100 * CAST(sum(average_us) AS DOUBLE) / (SELECT sum(average_us) FROM oru_layers WHERE NOT offloaded) AS percent
FROM oru_layers
WHERE NOT offloaded
GROUP BY type_name
ORDER BY percent DESC, type_name;

--: executions over a day
WITH started AS (
    SELECT (CAST(r.header_epoch_us AS BIGINT) + CAST(e.start_us AS BIGINT) - CAST(r.header_steady_us AS BIGINT))
        % 86400000000 AS us, e.duration_us
    FROM executions e JOIN runs r ON r.run_id = e.run_id)
SELECT CAST((us - us % 3600000000) / 3600000000 AS INTEGER) AS hour_utc, count(*) AS executions,
    avg(duration_us) AS average_us
FROM started
WHERE us IS NOT NULL
GROUP BY hour_utc
ORDER BY hour_utc;

--: what runs tell of their generator
SELECT count(*) AS runs, sum(CASE WHEN header_generator_version IS NULL THEN 1 ELSE 0 END) AS without_header,
    sum(CASE WHEN header_generator_version = '' THEN 1 ELSE 0 END) AS with_empty_version
FROM runs;
