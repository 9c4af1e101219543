/** A client that has macros for the types, in a header before the library's. */
#define HRESULT int
#define INT int
#define DWORD unsigned
#define BOOL int
typedef char* ClientPointer;
#define PCHAR ClientPointer

#include "scalar_client.h"

namespace {

TEST(ScalarTypes, StandBesideMacrosMadeBefore)
{
    ExpectClientWorks();
}

} // namespace
