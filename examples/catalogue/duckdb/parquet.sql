-- The tables as Parquet, for whatever reads it: a row for each playlist, and one for each finding.
COPY playlists TO (getvariable('out') || '/playlists.parquet') (FORMAT parquet, COMPRESSION zstd);
COPY findings TO (getvariable('out') || '/findings.parquet') (FORMAT parquet, COMPRESSION zstd);
SELECT
    (SELECT count(*) FROM read_parquet(getvariable('out') || '/playlists.parquet')) AS playlists,
    (SELECT count(*) FROM read_parquet(getvariable('out') || '/findings.parquet')) AS findings;
