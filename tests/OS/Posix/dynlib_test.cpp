/** Loaded libraries of the operating-system layer, with a library of the test's own. */
#include "VrelDynLibPsx.h"
#include "os_support.h"
#include "vtable_slot.h"

#include <dlfcn.h>

#include <memory>

#include <gtest/gtest.h>

using kestrin_test::ExpectSlots;
using kestrin_test::kFailure;

namespace {

constexpr char kLibrary[] = KESTRIN_TEST_LIBRARY;

/** Whether the process has the test's library loaded, asked of the system. */
bool IsLoaded()
{
    void* handle = dlopen(kLibrary, RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr)
        return false;
    dlclose(handle);
    return true;
}

std::unique_ptr<Vrel_DynLib> Load(const char* filename)
{
    Vrel_DynLib* library = nullptr;
    EXPECT_EQ(Vrel_DynLib::Load(filename, library), 0);
    return std::unique_ptr<Vrel_DynLib>(library);
}

/** Something to find in an argument that is to be set or left alone. */
void* const kUntouched = const_cast<char*>(kLibrary);

TEST(DynLibSlots, FollowTheDestructor)
{
    ExpectSlots<Vrel_IDynLib>(2, &Vrel_IDynLib::FindSymbol, &Vrel_IDynLib::Unload);
}

TEST(DynLib, FindsFunctionsAndVariables)
{
    ASSERT_FALSE(IsLoaded());
    const auto library = Load(kLibrary);
    ASSERT_TRUE(library);
    EXPECT_TRUE(IsLoaded());

    void* function = nullptr;
    ASSERT_EQ(library->FindSymbol("KestrinTestNext", function), 0);
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(reinterpret_cast<int (*)(int)>(function)(7), 8);

    void* variable = nullptr;
    ASSERT_EQ(library->FindSymbol("kestrin_test_number", variable), 0);
    EXPECT_EQ(*static_cast<int*>(variable), 41);
    library->Unload();
}

TEST(DynLib, FunctionsAreBoundWhenCalled)
{
    // One function of the library is missing, which does not matter until it is called.
    EXPECT_EQ(dlopen(kLibrary, RTLD_NOW), nullptr);
    const auto library = Load(kLibrary);
    ASSERT_TRUE(library);
    library->Unload();
}

TEST(DynLib, SymbolsStayInTheLibrary)
{
    const auto library = Load(kLibrary);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "KestrinTestNext"), nullptr);
    library->Unload();
}

TEST(DynLib, MissingSymbolFailsAndGivesNull)
{
    const auto library = Load(kLibrary);
    void* address = kUntouched;
    EXPECT_EQ(library->FindSymbol("KestrinTestNoSuchThing", address), kFailure);
    EXPECT_EQ(address, nullptr);
    library->Unload();
}

TEST(DynLib, NullSymbolFailsAndLeavesTheAddressAlone)
{
    const auto library = Load(kLibrary);
    void* address = kUntouched;
    EXPECT_EQ(library->FindSymbol(nullptr, address), kFailure);
    EXPECT_EQ(address, kUntouched);
    library->Unload();
}

TEST(DynLib, WithoutAHandleNoSymbolIsFound)
{
    Vrel_MipsDynLib library(nullptr);
    void* address = kUntouched;
    // A null handle would mean every library of the process to dlsym, and find this.
    EXPECT_EQ(library.FindSymbol("malloc", address), kFailure);
    EXPECT_EQ(address, kUntouched);
}

TEST(DynLib, NullFileNameFailsAndLeavesTheLibraryAlone)
{
    const auto before = Load(kLibrary);
    Vrel_DynLib* library = before.get();
    EXPECT_EQ(Vrel_DynLib::Load(nullptr, library), kFailure);
    EXPECT_EQ(library, before.get());
    before->Unload();
}

TEST(DynLib, FileThatCannotBeLoadedFailsAndGivesNull)
{
    const auto before = Load(kLibrary);
    for (const char* filename : {"/nowhere/no-such-library.so", __FILE__}) {
        Vrel_DynLib* library = before.get();
        EXPECT_EQ(Vrel_DynLib::Load(filename, library), kFailure);
        EXPECT_EQ(library, nullptr);
    }
    before->Unload();
}

TEST(DynLib, UnloadThatSucceedsAnswersFailure)
{
    const auto library = Load(kLibrary);
    EXPECT_EQ(library->Unload(), kFailure);
    EXPECT_FALSE(IsLoaded());
}

TEST(DynLib, UnloadThatFailsAnswersZero)
{
    // The C library stays for the program's sake, so that one release too many is an error.
    const auto library = Load("libc.so.6");
    EXPECT_EQ(library->Unload(), kFailure);
    EXPECT_EQ(library->Unload(), 0);
}

TEST(DynLib, LibraryLoadedTwiceStaysUntilTheSecondUnload)
{
    const auto first = Load(kLibrary);
    const auto second = Load(kLibrary);
    EXPECT_EQ(first->Unload(), kFailure);
    EXPECT_TRUE(IsLoaded());
    EXPECT_EQ(second->Unload(), kFailure);
    EXPECT_FALSE(IsLoaded());
}

TEST(DynLib, UnloadKeepsTheHandle)
{
    const auto holder = Load(kLibrary);
    const auto library = Load(kLibrary);
    library->Unload();
    void* address = nullptr;
    EXPECT_EQ(library->FindSymbol("KestrinTestNext", address), 0);
    holder->Unload();
}

TEST(DynLib, DeletingItLeavesTheLibraryLoaded)
{
    Load(kLibrary).reset();
    EXPECT_TRUE(IsLoaded());
}

TEST(DynLib, ServesThroughItsInterface)
{
    Vrel_IDynLib* library = Load(kLibrary).release();
    void* address = nullptr;
    EXPECT_EQ(library->FindSymbol("KestrinTestNext", address), 0);
    EXPECT_EQ(library->Unload(), kFailure);
    delete library;
}

} // namespace
