/**
 * A client of the operating-system layer and of the engine that writes in the scalar types, for
 * translation units that come by these types in different ways.
 */
#include "vrel_kestrin_condition.h"
#include "vrel_kestrin_dynlib.h"
#include "vrel_kestrin_graphic.h"
#include "vrel_kestrin_semaphore.h"
#include "vrel_kestrin_thread.h"

#include <gtest/gtest.h>

namespace {

using namespace zelxxx; // as clients do; the engine's DWORD must not be in the way

/** A thread that names itself and posts. */
class ScalarClient : public Vrel_Thread
{
public:
    explicit ScalarClient(BOOL detached) : Vrel_Thread(Vrel_THREAD_SCHED_DEFAULT, detached) {}

    HRESULT Task(void* param) override
    {
        char text[] = "scalar";
        const PCHAR name = text;
        named = SetThreadName(name);
        const INT count = 2;
        return static_cast<Vrel_Semaphore*>(param)->Post(count);
    }

    HRESULT named = 1;
};

/** Uses every type, and links and works with the library's own. */
void ExpectClientWorks()
{
    const HRESULT failure = static_cast<HRESULT>(0x80004005U);
    Vrel_Semaphore semaphore;
    ScalarClient client(BOOL(0));
    ASSERT_EQ(client.Start(&semaphore), HRESULT(0));
    EXPECT_EQ(client.Wait(INT(0)), HRESULT(0));
    EXPECT_EQ(client.named, HRESULT(0));
    EXPECT_EQ(semaphore.Wait(INT(1)), HRESULT(0));
    EXPECT_EQ(semaphore.Wait(INT(1)), HRESULT(0));
    EXPECT_EQ(semaphore.Wait(INT(1)), failure);
    const DWORD ticks = Vrel_GetTickCount();
    EXPECT_EQ(ticks, DWORD(0));
}

} // namespace
