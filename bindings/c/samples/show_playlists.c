/* What playlists hold, and what RFC 8216 says of them: `show_playlists FILE...`. It ends with 1 when a file cannot be read. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include "velhls.h"

/* A whole file, for free(); null when it cannot be read. */
static char* read_file(const char* name, size_t* length) {
    FILE* const file = fopen(name, "rb");
    char* text = NULL;
    *length = 0;
    if (file == NULL) return NULL;
    for (size_t room = 0; !feof(file) && !ferror(file);) {
        if (*length == room) {
            char* const longer = realloc(text, room = 2 * room + 4096);
            if (longer == NULL) break;
            text = longer;
        }
        *length += fread(text + *length, 1, room - *length, file);
    }
    if (!feof(file)) {
        free(text);
        text = NULL;
    }
    fclose(file);
    return text;
}

static void print(velhls_string text) {
    fwrite(text.data, 1, text.length, stdout);
}

/* Says what a media playlist holds: two columns, which take one call each. */
static void inspect_media(const velhls_media* media) {
    const size_t count = velhls_media_segment_count(media);
    double* const durations = calloc(count + 1, sizeof *durations);
    velhls_string* const uris = calloc(count + 1, sizeof *uris);
    if (durations != NULL && uris != NULL &&
        velhls_media_durations(media, 0, count, durations) == VELHLS_OK &&
        velhls_media_uris(media, 0, count, uris) == VELHLS_OK) {
        for (size_t i = 0; i < count; ++i) {
            printf("  %.3f ", durations[i]);
            print(uris[i]);
            printf("\n");
        }
    }
    free(durations);
    free(uris);
}

/* Says what a master playlist holds: one structure for each variant. */
static void inspect_master(const velhls_master* master) {
    velhls_variant variant = VELHLS_INIT(velhls_variant);
    for (size_t i = 0; velhls_master_variant(master, i, &variant) == VELHLS_OK; ++i) {
        printf("  %llu ", (unsigned long long)variant.bandwidth);
        print(variant.uri);
        printf("\n");
    }
}

/* Says why a text was rejected. */
static void explain(const velhls_error* error) {
    velhls_reason reason = VELHLS_INIT(velhls_reason);
    if (velhls_error_reason(error, &reason) != VELHLS_OK) return;
    printf("  rejected in line %lu: ", (unsigned long)reason.line);
    print(reason.message);
    printf("\n");
}

/* Says what the text has against RFC 8216. */
static void check(const char* text, size_t length) {
    velhls_report* report = NULL;
    velhls_finding finding = VELHLS_INIT(velhls_finding);
    if (velhls_check(text, length, NULL, &report) != VELHLS_OK) return;
    for (size_t i = 0; velhls_findings_get(velhls_report_findings(report), i, &finding) == VELHLS_OK; ++i) {
        if (finding.severity < VELHLS_SEVERITY_WARNING) continue;
        printf("  %lu:%lu: ", (unsigned long)finding.line, (unsigned long)finding.column);
        print(finding.message);
        printf(" [");
        print(finding.rule);
        printf("]\n");
    }
    velhls_report_free(report);
}

static void inspect(const char* text, size_t length) {
    velhls_kind kind = VELHLS_KIND_NEITHER;
    velhls_media* media = NULL;
    velhls_master* master = NULL;
    velhls_error* error = NULL;
    if (velhls_detect_kind(text, length, &kind) != VELHLS_OK) return;
    const velhls_status status = kind == VELHLS_KIND_MASTER
                                     ? velhls_master_parse(text, length, &master, &error)
                                     : velhls_media_parse(text, length, &media, &error);
    if (status == VELHLS_REJECTED) {
        explain(error);
    } else if (status != VELHLS_OK) {
        printf("  %s\n", velhls_status_text(status));
    } else if (kind == VELHLS_KIND_MASTER) {
        inspect_master(master);
    } else {
        inspect_media(media);
    }
    velhls_error_free(error);
    velhls_media_free(media);
    velhls_master_free(master);
    check(text, length);
}

int main(int count, char** names) {
    int status = 0;
    for (int i = 1; i < count; ++i) {
        size_t length = 0;
        char* const text = read_file(names[i], &length);
        if (text == NULL) {
            fprintf(stderr, "%s: error: it cannot be read\n", names[i]);
            status = 1;
            continue;
        }
        printf("%s\n", names[i]);
        inspect(text, length);
        free(text);
    }
    return status;
}
