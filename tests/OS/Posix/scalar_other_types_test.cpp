/** A client with other types of the same width, which would clash if they were defined again. */
typedef unsigned int HRESULT;
typedef int INT;
typedef unsigned int DWORD;
typedef int BOOL;
typedef char* PCHAR;
#define KESTRIN_CLIENT_SCALARS

#include "scalar_client.h"

namespace {

TEST(ScalarTypes, GiveWayToOtherTypesOfTheSameWidth)
{
    ExpectClientWorks();
}

} // namespace
