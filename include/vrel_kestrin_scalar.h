/**
 * @file
 * The scalar types of the operating-system classes, in the global namespace where clients expect
 * them.
 *
 * Other headers of a client may define the same names. That is in order when they make them
 *
 * - typedefs of the very types below, before or after this header: C++ lets a typedef be repeated;
 * - macros for the very types below, before or after this header;
 * - typedefs of other types that fit, such as an unsigned HRESULT: define KESTRIN_CLIENT_SCALARS
 *   before the first header of Kestrin and include the client's own header before it. All five
 *   names must be there then; none is defined here.
 *
 * A definition that does not fit is reported at compile time.
 */
#pragma once

#include <stdint.h>

#include <type_traits>

/**
 * @defgroup os Threads, locks and libraries
 * Classes over POSIX for clients' own threads. The engine uses none of them.
 * @{
 */

#ifndef KESTRIN_CLIENT_SCALARS

#ifndef HRESULT
/** A result: 0 for success, 0x80004005 for failure; as a signed number, failure is negative. */
typedef int32_t HRESULT;
#endif
#ifndef INT
/** A signed number of 32 bits. */
typedef int32_t INT;
#endif
#ifndef DWORD
/** An unsigned number of 32 bits. */
typedef uint32_t DWORD;
#endif
#ifndef BOOL
/** A truth value: false when 0, true otherwise. */
typedef int32_t BOOL;
#endif
#ifndef PCHAR
/** Text, ended by 0; not changed by what takes it. */
typedef char* PCHAR;
#endif

#endif

/** @} */

// These two are returned only, so that a type of the same width does.
static_assert(std::is_integral<HRESULT>::value && sizeof(HRESULT) == 4, "HRESULT has 32 bits");
static_assert(std::is_integral<DWORD>::value && sizeof(DWORD) == 4, "DWORD has 32 bits");
// These are arguments: a type of the same width would compile and be missing when linked.
static_assert(std::is_same<INT, int32_t>::value, "INT is a signed int of 32 bits");
static_assert(std::is_same<BOOL, int32_t>::value, "BOOL is a signed int of 32 bits");
static_assert(std::is_same<PCHAR, char*>::value, "PCHAR is a pointer to char");
