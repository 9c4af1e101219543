/** A client whose own header comes after the library's. */
#include "vrel_kestrin_condition.h"
#include "vrel_kestrin_dynlib.h"
#include "vrel_kestrin_semaphore.h"
#include "vrel_kestrin_thread.h"

typedef int HRESULT;
typedef int INT;
typedef unsigned int DWORD;
typedef int BOOL;
typedef char* PCHAR;

#include "scalar_client.h"

namespace {

TEST(ScalarTypes, StandBesideTypedefsMadeAfter)
{
    ExpectClientWorks();
}

} // namespace
