/** A client whose own header comes before the library's. */
typedef int HRESULT;
typedef int INT;
typedef unsigned int DWORD;
typedef int BOOL;
typedef char* PCHAR;

#include "scalar_client.h"

namespace {

TEST(ScalarTypes, StandBesideTypedefsMadeBefore)
{
    ExpectClientWorks();
}

} // namespace
