-- What variants declare beside what their segments and those of the dearest audio come to, where that is known: the worst first.
-- Below 1, a player that trusts the master playlist runs dry.
WITH variants AS (
    SELECT path, unnest(variants, recursive := true) FROM playlists WHERE kind = 'master'
), renditions AS (
    SELECT path, unnest(renditions, recursive := true) FROM playlists WHERE kind = 'master'
), audio AS (
    SELECT renditions.path, "group", max(peak_rate) AS peak_rate, max(average_rate) AS average_rate
    FROM renditions JOIN playlists ON playlists.path = renditions.playlist
    WHERE type = 'AUDIO'
    GROUP BY renditions.path, "group"
)
SELECT variants.path, variants.playlist, bandwidth,
    round(video.peak_rate + coalesce(audio.peak_rate, 0)) AS measured_peak,
    round(bandwidth / measured_peak, 3) AS declared_of_peak,
    average_bandwidth,
    round(video.average_rate + coalesce(audio.average_rate, 0)) AS measured_average,
    round(average_bandwidth / measured_average, 3) AS declared_of_average
FROM variants
JOIN playlists AS video ON video.path = variants.playlist AND video.peak_rate IS NOT NULL
LEFT JOIN audio ON audio.path = variants.path AND audio."group" = variants.audio
ORDER BY declared_of_peak, variants.path, variants.playlist;
