-- Which rules are broken in most playlists, and how often; one path of each to begin with.
SELECT rule, severity, count(DISTINCT path) AS playlists, count(*) AS findings, min(path) AS example
FROM findings
GROUP BY rule, severity
ORDER BY playlists DESC, findings DESC, rule;
