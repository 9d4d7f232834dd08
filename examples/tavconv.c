/*
 * tavconv: converts a text file between UTF-8 and UTF-16.
 *
 *     tavconv [-b BYTES] FROM TO INPUT OUTPUT
 *
 * FROM and TO are utf-8, utf-16le or utf-16be; one of them is utf-8. The file is read in blocks (of BYTES
 * bytes, 65536 unless stated), so it may be of any size. A character that a block cuts off is carried over to
 * the next one: the conversions themselves would take its parts for malformed text.
 *
 * Malformed text is converted as the library does it and never refused; a byte order mark is a character like
 * any other.
 */
#include "tavch.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { LONGEST_REST = 5 }; /* bytes of a six-byte form without its last one */

typedef struct Job {
    FILE* input;
    FILE* output;
    int bigEndian;      /* of the UTF-16 side */
    size_t blockSize;   /* bytes to read at a time */
    uint8_t* source;    /* what the last block left over, and the block */
    uint8_t* converted; /* room for what they become */
} Job;

/* Statuses other than success have no cause here but a mistake in this program. */
static void mustSucceed(tavStatus status) {
    if (status == tavStsNoError) return;
    fprintf(stderr, "tavconv: unexpected status %d\n", (int)status);
    exit(3);
}

static void swapBytes(uint16_t* units, size_t count) {
    for (size_t i = 0; i < count; ++i)
        units[i] = (uint16_t)(units[i] << 8 | units[i] >> 8);
}

/* How many bytes at the end of `text` begin a form that would go on behind it. */
static size_t cutOffBytes(const uint8_t* text, size_t length) {
    for (size_t back = 1; back <= LONGEST_REST && back <= length; ++back) {
        const uint8_t byte = text[length - back];
        if ((byte & 0xC0) == 0x80) continue; /* a continuation byte: look for its lead */
        size_t announced = 1;
        if (byte >= 0xC0 && byte < 0xFE)
            announced = byte >= 0xFC ? 6 : byte >= 0xF8 ? 5 : byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
        return announced > back ? back : 0;
    }
    return 0;
}

/* Converts `length` bytes of UTF-8; false when the output cannot be written. */
static int convertToUtf16(Job* job, size_t length) {
    uint16_t* const units = (uint16_t*)(void*)job->converted;
    uint32_t consumed = (uint32_t)length;
    uint32_t written = (uint32_t)length; /* a byte never becomes more than a unit, so everything fits */
    mustSucceed(tavsConvertUTF_8u16u(job->source, &consumed, units, &written, 0));
    /* The library's big-endian mode stores pairs in the machine's order; files want every unit swapped. */
    if (job->bigEndian) swapBytes(units, written);
    return fwrite(units, sizeof(uint16_t), written, job->output) == written;
}

/* Converts `length` bytes of UTF-16, an even number. */
static int convertToUtf8(Job* job, size_t length) {
    uint32_t consumed = (uint32_t)(length / sizeof(uint16_t));
    uint32_t written = consumed * 3; /* the longest form of a unit, so everything fits */
    mustSucceed(tavsConvertUTF_16u8u((const uint16_t*)(const void*)job->source, &consumed, job->converted,
                                     &written, job->bigEndian));
    return fwrite(job->converted, 1, written, job->output) == written;
}

/* How many bytes at the end of UTF-16 text belong to a unit or a pair that goes on behind it. */
static size_t cutOffPair(const Job* job, size_t length) {
    const size_t odd = length % 2;
    if (length - odd < 2) return odd;
    const uint8_t* const last = job->source + length - odd - 2;
    const uint8_t highByte = last[job->bigEndian ? 0 : 1];
    return (highByte & 0xFC) == 0xD8 ? odd + 2 : odd;
}

static int convertFile(Job* job, int fromUtf8) {
    size_t carried = 0;
    for (;;) {
        const size_t got = fread(job->source + carried, 1, job->blockSize, job->input);
        const size_t length = carried + got;
        const int atEnd = got < job->blockSize;
        if (ferror(job->input)) {
            perror("tavconv: cannot read");
            return 0;
        }
        if (!fromUtf8 && atEnd && length % 2 != 0) {
            fputs("tavconv: the input ends in half a unit\n", stderr);
            return 0;
        }
        const size_t rest = atEnd ? 0 : fromUtf8 ? cutOffBytes(job->source, length) : cutOffPair(job, length);
        const int done = fromUtf8 ? convertToUtf16(job, length - rest) : convertToUtf8(job, length - rest);
        if (!done) {
            perror("tavconv: cannot write");
            return 0;
        }
        if (atEnd) return 1;
        memmove(job->source, job->source + length - rest, rest);
        carried = rest;
    }
}

typedef enum Encoding { UTF_8, UTF_16LE, UTF_16BE, UNKNOWN } Encoding;

static Encoding encodingNamed(const char* name) {
    static const char* const names[] = {"utf-8", "utf-16le", "utf-16be"};
    for (int i = 0; i < UNKNOWN; ++i)
        if (strcmp(name, names[i]) == 0) return (Encoding)i;
    return UNKNOWN;
}

static int usage(void) {
    fputs("usage: tavconv [-b BYTES] FROM TO INPUT OUTPUT\n"
          "FROM and TO: utf-8, utf-16le, utf-16be; one of them utf-8\n",
          stderr);
    return 2;
}

int main(int argc, char** argv) {
    Job job = {0};
    job.blockSize = 65536;
    if (argc > 2 && strcmp(argv[1], "-b") == 0) {
        const long size = strtol(argv[2], NULL, 10);
        if (size < 1 || size > 1 << 24) return usage();
        job.blockSize = (size_t)size;
        argc -= 2;
        argv += 2;
    }
    if (argc != 5) return usage();
    const Encoding from = encodingNamed(argv[1]);
    const Encoding to = encodingNamed(argv[2]);
    if (from == UNKNOWN || to == UNKNOWN || (from == UTF_8) == (to == UTF_8)) return usage();
    job.bigEndian = from == UTF_16BE || to == UTF_16BE;

    const size_t sourceSize = LONGEST_REST + job.blockSize;
    job.source = malloc(sourceSize);
    job.converted = malloc(sourceSize * 2); /* UTF-8 to UTF-16 at most doubles the bytes; back, 3 for 2 */
    job.input = fopen(argv[3], "rb");
    job.output = job.input != NULL ? fopen(argv[4], "wb") : NULL;
    int converted = 0;
    if (job.source == NULL || job.converted == NULL) {
        fputs("tavconv: out of memory\n", stderr);
    } else if (job.input == NULL || job.output == NULL) {
        perror(job.input == NULL ? argv[3] : argv[4]);
    } else {
        converted = convertFile(&job, from == UTF_8);
    }
    if (job.output != NULL && fclose(job.output) != 0) {
        perror(argv[4]);
        converted = 0;
    }
    if (job.input != NULL) fclose(job.input);
    free(job.converted);
    free(job.source);
    return converted ? 0 : 1;
}
