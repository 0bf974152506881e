-- The questions of questions.sql for ClickHouse 18.16, which has no window functions, one JOIN a SELECT and no quantile that
-- lies between two values in proportion. All rows of a run are on one server, so each server joins its own.

--: slowest graphs by version
SELECT version, graph, count() AS runs, avg(spread_median_us) AS median_us
FROM (SELECT run_id, name AS graph, spread_median_us FROM graphs)
ALL INNER JOIN (SELECT run_id, header_backend_version AS version FROM runs) USING run_id
GROUP BY version, graph
ORDER BY median_us DESC, version, graph
LIMIT 10;

--: layers that grew from the first version to the last
WITH (SELECT min(header_backend_version) FROM runs WHERE level IS NOT NULL) AS first,
    (SELECT max(header_backend_version) FROM runs WHERE level IS NOT NULL) AS last
SELECT graph_name AS graph, layer, avgIf(us, version = first) AS first_us, avgIf(us, version = last) AS last_us,
    last_us - first_us AS grown_us
FROM (SELECT run_id, graph AS place, name AS layer, dsp_us + krel_us AS us FROM zeb_layers)
ALL INNER JOIN (
    SELECT run_id, place, graph_name, version
    FROM (SELECT run_id, graph AS place, name AS graph_name FROM graphs)
    ALL INNER JOIN (SELECT run_id, header_backend_version AS version FROM runs) USING run_id)
USING run_id, place
GROUP BY graph_name, layer
HAVING countIf(version = first) > 0 AND countIf(version = last) > 0 AND last_us > first_us
ORDER BY grown_us DESC, graph, layer
LIMIT 10;

--: p90 of an execution by site
SELECT site, us[place] + tenths % 10 / 10 * (us[least(place + 1, count)] - us[place]) AS p90_us
FROM (
    SELECT site, arraySort(groupArray(toFloat64(us))) AS us, length(us) AS count, 9 * (count - 1) AS tenths,
        intDiv(tenths, 10) + 1 AS place
    FROM (SELECT run_id, assumeNotNull(duration_us) AS us FROM executions WHERE duration_us > 0)
    ALL INNER JOIN (SELECT run_id, value AS site FROM labels WHERE key = 'site') USING run_id
    GROUP BY site)
ORDER BY site;

--: runs with a finding
SELECT rule, uniqExact(run_id) AS runs
FROM findings
GROUP BY rule
ORDER BY rule;

--: share of the DSP's time by type of layer
WITH (SELECT sum(average_us) FROM oru_layers WHERE NOT offloaded) AS whole
SELECT type_name, 100 * sum(average_us) / whole AS percent
FROM oru_layers
WHERE NOT offloaded
GROUP BY type_name
ORDER BY percent DESC, type_name;

--: executions over a day
SELECT intDiv(us, 3600000000) AS hour_utc, count() AS executions, avg(duration_us) AS average_us
FROM (
    SELECT (toInt64(epoch_us) + toInt64(start_us) - toInt64(steady_us)) % 86400000000 AS us, duration_us
    FROM (SELECT run_id, start_us, duration_us FROM executions)
    ALL INNER JOIN (SELECT run_id, header_epoch_us AS epoch_us, header_steady_us AS steady_us FROM runs) USING run_id)
WHERE us IS NOT NULL
GROUP BY hour_utc
ORDER BY hour_utc;

--: what runs tell of their generator
SELECT count() AS runs, countIf(header_generator_version IS NULL) AS without_header,
    countIf(header_generator_version = '') AS with_empty_version
FROM runs;
