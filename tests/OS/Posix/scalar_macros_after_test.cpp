/** A client that has macros for the types, in a header after the library's. */
#include "vrel_kestrin_condition.h"
#include "vrel_kestrin_dynlib.h"
#include "vrel_kestrin_semaphore.h"
#include "vrel_kestrin_thread.h"

#define HRESULT int
#define INT int
#define DWORD unsigned
#define BOOL int
typedef char* ClientPointer;
#define PCHAR ClientPointer

#include "scalar_client.h"

namespace {

TEST(ScalarTypes, StandBesideMacrosMadeAfter)
{
    ExpectClientWorks();
}

} // namespace
