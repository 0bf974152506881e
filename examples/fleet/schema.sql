-- The tables of zeb-profile-export with their types, for SQLite and DuckDB alike. docs/tables.md describes the columns.
CREATE TABLE IF NOT EXISTS runs (
    run_id TEXT, log TEXT, header_time_scale DOUBLE, header_epoch_us UBIGINT, header_steady_us UBIGINT,
    header_generator TEXT, header_generator_version TEXT, header_backend_version TEXT, header_adapter_updater BOOLEAN,
    level TEXT, asynchronous BOOLEAN, init_us UBIGINT);
CREATE TABLE IF NOT EXISTS labels (run_id TEXT, key TEXT, value TEXT);
CREATE TABLE IF NOT EXISTS graphs (
    run_id TEXT, graph INTEGER, name TEXT, total_us UBIGINT, spread_count UBIGINT, spread_min_us DOUBLE,
    spread_median_us DOUBLE, spread_p90_us DOUBLE, spread_p99_us DOUBLE, spread_max_us DOUBLE, spread_first_us DOUBLE,
    outliers_limit_us DOUBLE, outliers_count UBIGINT, outliers_excess_us DOUBLE,
    breakdown_execution_count UBIGINT, breakdown_backend_us UBIGINT, breakdown_queue_wait_us UBIGINT,
    breakdown_input_copy_us DOUBLE, breakdown_output_copy_us DOUBLE, breakdown_ipc_us UBIGINT,
    breakdown_accelerator_us UBIGINT, layers_kind TEXT, layers_dsp_us UBIGINT, layers_krel_us UBIGINT,
    layers_time_us UBIGINT, layers_handing_over_us UBIGINT, finalize_us UBIGINT, dsp_clock_hz UBIGINT,
    krel_clock_hz UBIGINT, average_duration_us UBIGINT, shortest_duration_us UBIGINT, longest_duration_us UBIGINT);
CREATE TABLE IF NOT EXISTS executions (
    run_id TEXT, graph INTEGER, row INTEGER, start_us UBIGINT, duration_us UBIGINT, queue_wait_us UBIGINT);
CREATE TABLE IF NOT EXISTS steps (
    run_id TEXT, row INTEGER, step TEXT, text TEXT, start_us UBIGINT, duration_us UBIGINT);
CREATE TABLE IF NOT EXISTS zeb_layers (
    run_id TEXT, graph INTEGER, row INTEGER, name TEXT, dsp_us UBIGINT, krel_us UBIGINT, time_us UBIGINT);
CREATE TABLE IF NOT EXISTS oru_layers (
    run_id TEXT, graph INTEGER, row INTEGER, zeb_row INTEGER, id UBIGINT, type UBIGINT, type_name TEXT,
    offloaded BOOLEAN, linked BOOLEAN, loopback BOOLEAN, merged_group UBIGINT, executions UBIGINT,
    average_us UBIGINT, total_us UBIGINT, dsp_cycles UBIGINT, total_dsp_cycles UBIGINT, hal_us UBIGINT,
    driver_us UBIGINT, cache_flush_us UBIGINT, krel_exec_us UBIGINT, nodes UBIGINT, core_cycles UBIGINT,
    core_us UBIGINT, time_us UBIGINT);
CREATE TABLE IF NOT EXISTS findings (
    run_id TEXT, graph INTEGER, row INTEGER, rule TEXT, "group" TEXT, text TEXT, us DOUBLE, percent DOUBLE,
    cost_us DOUBLE, part_of TEXT, next TEXT);
