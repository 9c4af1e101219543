/** The scalar types as the library defines them. Beside it lie clients with types of their own. */
#include "scalar_client.h"

#include <type_traits>

namespace {

static_assert(std::is_same<HRESULT, int>::value, "");
static_assert(std::is_same<INT, int>::value, "");
static_assert(std::is_same<DWORD, unsigned int>::value, "");
static_assert(std::is_same<BOOL, int>::value, "");
static_assert(std::is_same<PCHAR, char*>::value, "");

TEST(ScalarTypes, ServeAClientWithoutItsOwn)
{
    ExpectClientWorks();
}

} // namespace
