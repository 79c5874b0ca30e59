/// @file pxutil.h
/// The platform library of libfikleipa: processor features, bulk moves, memory, threads, events, counters. It is a
/// library of its own so that a host can put another in its place: libfikleipa calls every function through its dynamic
/// symbol. Any number of threads may use all of it at once, and a process may fork whatever its threads do: in the
/// child everything works, and events that were open are open, with nobody waiting.
#ifndef PXUTIL_H
#define PXUTIL_H

// NOLINTBEGIN(modernize-deprecated-headers,modernize-use-using,readability-identifier-naming): C, and names that stand

#include <stddef.h>

#ifdef __cplusplus
#define PXUTIL_API extern "C" __attribute__((visibility("default")))
#else
#define PXUTIL_API extern __attribute__((visibility("default")))
#endif

/// Bits of CPUFeatureFlags(). Each stands for instructions that both the processor and the operating system support.
/// None is ever set on a processor other than x86-64.
enum {
    PX_CPU_SSE41 = 0x20,   ///< SSSE3 and SSE4.1
    PX_CPU_AVX = 0x80,     ///< AVX
    PX_CPU_AVX2 = 0x2000,  ///< AVX2 and FMA
    PX_CPU_AVX512 = 0x4000 ///< AVX-512 F, BW, DQ, VL, VBMI and VNNI
};

/// Returns the PX_CPU_ bits of this processor.
PXUTIL_API unsigned int CPUFeatureFlags(void);

/// Copies `bytes` bytes from `source` to `destination`. The two must not overlap; no alignment is needed.
PXUTIL_API void CopyMemoryFast(void* destination, const void* source, size_t bytes);

/// Writes each of `count` 16-bit words of `source` to `destination` with its two bytes swapped. `destination` may be
/// `source` itself; otherwise the two must not overlap. No alignment is needed.
PXUTIL_API void EndianConvertWord(void* destination, const void* source, size_t count);

/// Returns `size` bytes aligned to 64, or null when there are none. A size of 0 is one that PXFree() takes as well.
PXUTIL_API void* PXAlloc(size_t size);

/// Gives back what PXAlloc() returned; null is allowed.
PXUTIL_API void PXFree(void* memory);

/// What a thread runs: takes the argument given to pxOSCreateThread() and returns an exit value that nobody reads.
typedef unsigned int (*pxOSThreadEntry)(void* argument);

/// A thread handle; null where the entry was run on the calling thread.
typedef void* pxOSThread;

/// An event handle. Handles are never used twice, so one that was closed stays recognisable as closed.
typedef void* pxOSEvent;

/// Starts a thread that runs `entry(argument)`. `security`, `stackSize` and `flags` are to be 0 and are not read.
/// `threadId`, if not null, receives a number that no thread started here before has, before `entry` begins. `name`, if
/// not null, labels the thread for debuggers (its first 15 bytes); without one the thread has its creator's.
///
/// The thread ends with its entry. It has the stack, the scheduling and the processors that the system gives any new
/// thread of its creator's, and blocks every signal that can be blocked, so that no handler of the host's runs on it;
/// an entry that is to take signals unblocks them. Close the handle with pxOSCloseThread().
///
/// Where the system refuses a thread, `entry` is run to its end on the calling thread, which keeps its name and its
/// signals, with a number of 0, before this returns null: so nobody waits for it in vain.
PXUTIL_API pxOSThread pxOSCreateThread(void* security, unsigned int stackSize, pxOSThreadEntry entry, void* argument,
                                       unsigned int flags, unsigned int* threadId, const char* name);

/// Gives back a thread handle; the thread runs on by itself. `mode` is not read. Null is allowed.
PXUTIL_API void pxOSCloseThread(pxOSThread thread, const char* mode);

/// Creates an event. `security` is to be null and is not read. With `manualReset` 0 a signal releases one wait and is
/// then gone, and while nobody waits one signal at most is kept; otherwise a signal stays. `initialState` not 0 creates
/// the event signalled. `name` is a label: two events of one name are two events.
/// Returns null when memory runs out; every function below takes null and does nothing.
PXUTIL_API pxOSEvent pxOSCreateEvent(void* security, int manualReset, int initialState, const char* name);

/// Signals an event. Harmless on one that was closed, also while or after another thread closes it.
PXUTIL_API void pxOSSetEvent(pxOSEvent event);

/// Waits until the event is signalled, at most `milliseconds`. Returns 1 when it was signalled, 0 on time-out or when
/// the event is, or meanwhile was, closed.
PXUTIL_API int pxOSWaitForEvent(pxOSEvent event, unsigned int milliseconds);

/// Closes an event and wakes whoever waits on it. Harmless on one that was closed.
PXUTIL_API void pxOSCloseEvent(pxOSEvent event);

/// Add 1 to, or take 1 from, `*value` as one indivisible step that orders memory both ways; return the new value.
PXUTIL_API int pxOSInterlockedIncrement(int* value);
PXUTIL_API int pxOSInterlockedDecrement(int* value);

// NOLINTEND(modernize-deprecated-headers,modernize-use-using,readability-identifier-naming)

#endif // PXUTIL_H
