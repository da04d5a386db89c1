# The newest section of CHANGELOG is that of VERSION, with its date, or with "not released" until there is one.
file(STRINGS ${CHANGELOG} headings REGEX "^## ")
list(GET headings 0 newest)
string(REPLACE "." "\\." version_pattern ${VERSION})
if(NOT newest MATCHES "^## \\[${version_pattern}\\] - (not released|20[0-9][0-9]-[01][0-9]-[0-3][0-9])$")
    message(FATAL_ERROR "the changelog begins with \"${newest}\", and the version is ${VERSION}")
endif()
