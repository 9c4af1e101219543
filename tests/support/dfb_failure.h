/**
 * DirectFB calls that fail, and what the engine then reports.
 *
 *     EXPECT_EXIT(
 *         {
 *             zelInitialize(64, 48, 32);
 *             FailCall<&IDirectFBSurface::Flip>(View::_primary);
 *             zelCreateView(...)->Copy(...);
 *         },
 *         ExitsWith(kInjected), Reports("Graphic/DFB/view.cpp", "_primary->Flip(...)"));
 *
 * For child processes only: the function pointer stays replaced.
 */
#pragma once

#include <string>

#include <directfb.h>
#include <gmock/gmock.h>

namespace kestrin_test {

/** The result of a call made to fail. */
constexpr DFBResult kInjected = DFB_ACCESSDENIED;

template <auto Operation, class Interface, class... Arguments>
void FailCallOf(Interface* object, DFBResult (*Interface::*)(Interface*, Arguments...),
                int successes, DFBResult result)
{
    static DFBResult (*real)(Interface*, Arguments...);
    static int left;
    static DFBResult failure;
    real = object->*Operation;
    left = successes;
    failure = result;
    object->*Operation = [](Interface* self, Arguments... arguments) {
        return left-- > 0 ? real(self, arguments...) : failure;
    };
}

/** Makes an operation of a DirectFB object fail, after so many calls that still do their work. */
template <auto Operation, class Interface>
void FailCall(Interface* object, int successes = 0, DFBResult result = kInjected)
{
    FailCallOf<Operation>(object, Operation, successes, result);
}

/**
 * Matches standard error that consists of one report and nothing else: the header with file and
 * line, then DirectFB's own line with the text of the call, to the letter.
 */
testing::Matcher<const std::string&> Reports(const std::string& file, const std::string& call,
                                             DFBResult result = kInjected);

/** The same, after other lines. */
testing::Matcher<const std::string&> ReportsAtLast(const std::string& file, const std::string& call,
                                                   DFBResult result = kInjected);

/** Holds for a process that DirectFB ended because of a result. */
class ExitsWith
{
public:
    explicit ExitsWith(DFBResult result) : _result(result) {}
    bool operator()(int status) const;

private:
    DFBResult _result;
};

} // namespace kestrin_test
