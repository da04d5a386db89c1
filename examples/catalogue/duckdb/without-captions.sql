-- Master playlists of which no variant has closed captions or subtitles. What the models reject cannot be asked, and is not here.
SELECT path
FROM playlists
WHERE kind = 'master' AND len(variants) > 0
  AND len(list_filter(renditions, lambda rendition: rendition.type IN ('CLOSED-CAPTIONS', 'SUBTITLES'))) = 0
ORDER BY path;
