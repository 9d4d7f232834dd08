/*
 * logclass: sorts the lines of a log into classes with a set of patterns.
 *
 *     logclass [FILE]
 *
 * Every line of FILE (of the standard input without one) is searched once with all patterns of the set. It is
 * printed behind the names of the classes that it belongs to, with the detail that the class is about in
 * brackets; lines of no class are marked with a dash. A summary follows. Longer lines are taken in pieces of
 * 1023 bytes.
 */
#include "tavch.h"

#include <stdio.h>
#include <string.h>

/* The number of a class is its identifier in the set; 0 is no identifier. A class may have several patterns.
 */
enum Class { ACCESS = 1, LOGIN, INTRUDER, FAULT, SLOW, CLASS_COUNT };

static const char* const classNames[CLASS_COUNT] = {"", "access", "login", "intruder", "fault", "slow"};

typedef struct Classifier {
    uint32_t id;
    const char* pattern; /* its first group, if any, is the detail */
    const char* options;
} Classifier;

static const Classifier classifiers[] = {
    {ACCESS, "(?:GET|POST|PUT) (\\S+) \\d{3} ", ""},
    {LOGIN, "user (\\w+) logged in", ""},
    {INTRUDER, "authentication failed for user \\w+ from ([\\d.]+)", ""},
    {FAULT, "error: (.*)$", "i"},
    {FAULT, " (5\\d\\d) \\d+ bytes$", ""},
    {SLOW, "(?:took|after) (\\d{4,} ms)", ""},
};

enum { CLASSIFIER_COUNT = sizeof classifiers / sizeof *classifiers, RESULTS_PER_PATTERN = 2 };

typedef struct Report {
    long lines;
    long unclassified;
    long perClass[CLASS_COUNT];
} Report;

/* Compiles all patterns into a new set; null when one is refused or memory runs out. */
static tavRegExpMultiContext* makeSet(void) {
    tavRegExpMultiContext* set;
    int i;
    if (tavsRegExpMultiInitAlloc(&set, CLASSIFIER_COUNT) != tavStsNoError) return NULL;
    for (i = 0; i < CLASSIFIER_COUNT; i++) {
        const Classifier* one = &classifiers[i];
        tavRegExpContext* pattern;
        int32_t errOffset;
        const tavStatus status = tavsRegExpInitAlloc(one->pattern, one->options, &pattern, &errOffset);
        if (status != tavStsNoError) {
            fprintf(stderr, "logclass: pattern %s: status %d\n", one->pattern, (int)status);
            return NULL;
        }
        tavsRegExpMultiAdd(pattern, one->id, set);
    }
    return set;
}

/* The set holds pointers only: the patterns are released before it. */
static void freeSet(tavRegExpMultiContext* set) {
    int32_t i;
    for (i = 0; i < set->capacity; i++)
        tavsRegExpFree(set->patterns[i]);
    tavsRegExpMultiFree(set);
}

static void printFinding(const tavRegExpMultiFindResult* result) {
    const tavRegExpFindResult* detail = &result->finds[result->numFind - 1];
    printf("%s", classNames[result->id]);
    if (detail->length > 0) printf("(%.*s)", (int)detail->length, (const char*)detail->start);
    printf(" ");
}

static void classify(const char* line, tavRegExpMultiContext* set, Report* report) {
    tavRegExpFindResult finds[CLASSIFIER_COUNT][RESULTS_PER_PATTERN];
    tavRegExpMultiFindResult results[CLASSIFIER_COUNT];
    const int32_t length = (int32_t)strlen(line);
    int found = 0;
    int i;
    for (i = 0; i < CLASSIFIER_COUNT; i++) {
        results[i].searched = 0;
        results[i].numFind = RESULTS_PER_PATTERN;
        results[i].finds = finds[i];
    }
    /* An empty line is refused; nothing is searched then. */
    tavsRegExpMultiFind_8u((const uint8_t*)line, length, results, set);
    for (i = 0; i < CLASSIFIER_COUNT; i++) {
        if (!results[i].searched || results[i].status < 0 || results[i].numFind == 0) continue;
        found = 1;
        report->perClass[results[i].id]++;
        printFinding(&results[i]);
    }
    report->lines++;
    if (!found) report->unclassified++;
    printf("%s| %s\n", found ? "" : "- ", line);
}

static void summarize(const Report* report) {
    int id;
    printf("\n%ld lines\n", report->lines);
    for (id = 1; id < CLASS_COUNT; id++)
        printf("%6ld %s\n", report->perClass[id], classNames[id]);
    printf("%6ld of no class\n", report->unclassified);
}

int main(int argc, char** argv) {
    static Report report;
    char line[1024];
    FILE* const in = argc > 1 ? fopen(argv[1], "rb") : stdin;
    tavRegExpMultiContext* const set = makeSet();
    if (in == NULL || set == NULL) {
        fprintf(stderr, "logclass: cannot %s\n", in == NULL ? "open the file" : "prepare the patterns");
        return 1;
    }
    while (fgets(line, sizeof line, in) != NULL) {
        line[strcspn(line, "\r\n")] = '\0';
        classify(line, set, &report);
    }
    summarize(&report);
    freeSet(set);
    return 0;
}
