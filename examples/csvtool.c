/*
 * csvtool: picks columns out of a table of text lines.
 *
 *     csvtool [-d C] [-o C] [-t SET] [-c NAME,NAME,...] INPUT OUTPUT
 *
 * The first line of INPUT names the columns; every further line is a row. Fields are separated by C (a comma,
 * unless -d says otherwise) and stripped of the characters in SET (blanks, tabs and double quotes). OUTPUT
 * receives the columns that -c names, in that order and without regard to the case of Latin letters (all
 * columns without -c), joined by the character of -o (a comma). Blank lines are left out; a row with too few
 * fields is filled up with empty ones.
 *
 * A double quote does not protect a separator inside it.
 */
#include "tavch.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { MAX_FIELDS = 64, MAX_FIELD_LENGTH = 1024 };

/* A string somewhere in memory. */
typedef struct Span {
    const uint8_t* start;
    int32_t length;
} Span;

typedef struct Options {
    uint8_t separator;
    uint8_t joiner;
    Span stripped;
    Span columns; /* names as given, empty for all */
    const char* input;
    const char* output;
} Options;

/* One line taken apart; fields beyond `count` are empty. */
typedef struct Row {
    uint8_t text[MAX_FIELDS][MAX_FIELD_LENGTH];
    int32_t lengths[MAX_FIELDS];
    int32_t count;
} Row;

/* Which fields of a row to write, in order. */
typedef struct Selection {
    int32_t fields[MAX_FIELDS];
    int32_t count;
} Selection;

static void fail(const char* what, const char* which) {
    fprintf(stderr, "csvtool: %s%s\n", what, which);
    exit(1);
}

static Span spanOf(const char* text) {
    const Span span = {(const uint8_t*)text, (int32_t)strlen(text)};
    return span;
}

/* Cuts `line` into stripped fields. */
static void splitRow(Span line, uint8_t separator, Span stripped, Row* row) {
    static uint8_t raw[MAX_FIELDS][MAX_FIELD_LENGTH];
    uint8_t* slots[MAX_FIELDS];
    int32_t lengths[MAX_FIELDS];
    for (int32_t i = 0; i < MAX_FIELDS; ++i) {
        slots[i] = raw[i];
        lengths[i] = MAX_FIELD_LENGTH;
        row->lengths[i] = 0;
    }
    row->count = MAX_FIELDS;
    const tavStatus status =
        tavsSplitC_8u_D2L(line.start, line.length, separator, slots, lengths, &row->count);
    if (status == tavStsSplitUnfinished) fail("a line has too many fields", "");
    if (status == tavStsFieldTruncated) fail("a field is too long", "");
    for (int32_t i = 0; i < row->count; ++i)
        tavsTrimCAny_8u(raw[i], lengths[i], stripped.start, stripped.length, row->text[i], &row->lengths[i]);
}

static int sameName(const uint8_t* one, int32_t oneLength, const uint8_t* two, int32_t twoLength) {
    int32_t difference = 0;
    if (oneLength != twoLength) return 0;
    tavsCompareIgnoreCaseLatin_8u(one, two, oneLength, &difference);
    return difference == 0;
}

static int32_t columnCalled(const Row* header, const uint8_t* name, int32_t length) {
    for (int32_t i = 0; i < header->count; ++i) {
        if (sameName(header->text[i], header->lengths[i], name, length)) return i;
    }
    fail("no such column", "");
    return -1;
}

/* Looks the wanted names up in the header line. */
static void selectColumns(const Options* options, const Row* header, Selection* selection) {
    static Row wanted;
    if (options->columns.length == 0) {
        selection->count = header->count;
        for (int32_t i = 0; i < header->count; ++i)
            selection->fields[i] = i;
        return;
    }
    splitRow(options->columns, ',', options->stripped, &wanted);
    selection->count = wanted.count;
    for (int32_t i = 0; i < wanted.count; ++i)
        selection->fields[i] = columnCalled(header, wanted.text[i], wanted.lengths[i]);
}

static void writeRow(const Row* row, const Selection* selection, uint8_t joiner, FILE* output) {
    static uint8_t joined[MAX_FIELDS * (MAX_FIELD_LENGTH + 1)];
    const uint8_t* fields[MAX_FIELDS];
    int32_t lengths[MAX_FIELDS];
    size_t length = (size_t)selection->count; /* a separator behind each but the last, and the line's end */
    for (int32_t i = 0; i < selection->count; ++i) {
        fields[i] = row->text[selection->fields[i]];
        lengths[i] = row->lengths[selection->fields[i]];
        length += (size_t)lengths[i];
    }
    tavsConcatC_8u_D2L(fields, lengths, selection->count, joiner, joined);
    joined[length - 1] = '\n';
    if (fwrite(joined, 1, length, output) != length) fail("cannot write", "");
}

/* Takes the next line off the text and gives it without its end. */
static Span nextLine(Span* text) {
    int32_t length = 0;
    tavsFindC_8u(text->start, text->length, '\n', &length);
    const int32_t taken = length < 0 ? text->length : length + 1;
    Span line = {text->start, length < 0 ? text->length : length};
    if (line.length > 0 && line.start[line.length - 1] == '\r') --line.length;
    text->start += taken;
    text->length -= taken;
    return line;
}

static int isBlank(const Row* row) {
    return row->count == 0 || (row->count == 1 && row->lengths[0] == 0);
}

static void convert(const Options* options, Span text, FILE* output) {
    static Row row;
    Selection selection = {{0}, 0};
    int sawHeader = 0;
    while (text.length > 0) {
        splitRow(nextLine(&text), options->separator, options->stripped, &row);
        if (isBlank(&row)) continue;
        if (!sawHeader) selectColumns(options, &row, &selection);
        sawHeader = 1;
        writeRow(&row, &selection, options->joiner, output);
    }
}

static Span readAll(const char* path) {
    FILE* file = fopen(path, "rb");
    size_t length = 0, room = 1 << 16;
    uint8_t* text = malloc(room);
    if (file == NULL) fail("cannot open ", path);
    while (text != NULL) {
        length += fread(text + length, 1, room - length, file);
        if (length < room) break;
        if (room > INT32_MAX / 2) fail("too large: ", path);
        room *= 2;
        uint8_t* larger = realloc(text, room);
        if (larger == NULL) free(text);
        text = larger;
    }
    if (text == NULL || ferror(file)) fail("cannot read ", path);
    fclose(file);
    const Span all = {text, (int32_t)length};
    return all;
}

static Options parse(int count, char** arguments) {
    Options options = {',', ',', spanOf(" \t\""), spanOf(""), NULL, NULL};
    int i = 1;
    for (; i + 1 < count && arguments[i][0] == '-'; i += 2) {
        const Span value = spanOf(arguments[i + 1]);
        const char letter = arguments[i][1];
        if ((letter == 'd' || letter == 'o') && value.length != 1)
            fail("not one character: ", arguments[i + 1]);
        switch (letter) {
        case 'd':
            options.separator = value.start[0];
            break;
        case 'o':
            options.joiner = value.start[0];
            break;
        case 't':
            options.stripped = value;
            break;
        case 'c':
            options.columns = value;
            break;
        default:
            fail("unknown option ", arguments[i]);
        }
    }
    if (count - i != 2) fail("usage: csvtool [-d C] [-o C] [-t SET] [-c NAME,...] INPUT OUTPUT", "");
    options.input = arguments[i];
    options.output = arguments[i + 1];
    return options;
}

int main(int argc, char** argv) {
    const Options options = parse(argc, argv);
    const Span text = readAll(options.input);
    FILE* output = fopen(options.output, "wb");
    if (output == NULL) fail("cannot open ", options.output);
    convert(&options, text, output);
    if (fclose(output) != 0) fail("cannot write ", options.output);
    free((void*)text.start);
    return 0;
}
