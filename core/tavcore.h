/* The part of the family's core library that this library uses. A small stand-in is built from this folder,
 * so that the library loads where the family's own is not installed; the real one drops in by file name. */
#ifndef TAVCORE_H
#define TAVCORE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Allocates `size` bytes, aligned for any object; null when there is no memory. */
void* tavMalloc(size_t size);

/** Releases a block from tavMalloc; null is allowed. */
void tavFree(void* block);

/** The processor features that the family may use, as a bit set; the stand-in names the x86-64 baseline
 *  (bit 0 SSE, bit 1 SSE2). */
uint64_t tavGetEnabledCpuFeatures(void);

#ifdef __cplusplus
}
#endif

#endif
