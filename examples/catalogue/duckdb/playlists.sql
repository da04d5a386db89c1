-- The JSON lines as a table: the columns that the other files use, of the lines of velhls check and of describe.py alike.
-- What only describe.py tells is null for the lines of velhls check.
CREATE TABLE playlists AS
SELECT *
FROM read_json(getvariable('lines'), format = 'newline_delimited', maximum_object_size = 268435456, columns = {
    path: 'VARCHAR',
    kind: 'VARCHAR',
    rejected: 'JSON',
    failure: 'VARCHAR',
    findings: 'STRUCT(rule VARCHAR, profile VARCHAR, severity VARCHAR, line BIGINT, "column" BIGINT, message VARCHAR)[]',
    variants: 'STRUCT(playlist VARCHAR, bandwidth BIGINT, average_bandwidth BIGINT, audio VARCHAR, subtitles VARCHAR,
                      closed_captions VARCHAR)[]',
    renditions: 'STRUCT(type VARCHAR, "group" VARCHAR, language VARCHAR, playlist VARCHAR)[]',
    segments: 'BIGINT',
    duration: 'DOUBLE',
    peak_rate: 'DOUBLE',
    average_rate: 'DOUBLE'
});
CREATE VIEW findings AS SELECT path, unnest(findings, recursive := true) FROM playlists;
