#include "VrelDynLibPsx.h"

#include "VrelPosix_p.h"

#include <dlfcn.h>

HRESULT Vrel_MipsDynLib::FindSymbol(const char* symbol, void*& address)
{
    if (symbol == nullptr || library == nullptr)
        return kVrelFailure;
    address = dlsym(library, symbol);
    return address != nullptr ? kVrelSuccess : kVrelFailure;
}

HRESULT Vrel_MipsDynLib::Unload()
{
    // The wrong way round, which clients count on.
    return dlclose(library) != 0 ? kVrelSuccess : kVrelFailure;
}

HRESULT Vrel_DynLib::Load(const char* filename, Vrel_DynLib*& library)
{
    if (filename == nullptr)
        return kVrelFailure;
    library = nullptr;
    void* handle = dlopen(filename, RTLD_LAZY);
    if (handle == nullptr)
        return kVrelFailure;
    library = new Vrel_DynLib(new Vrel_MipsDynLib(handle));
    return kVrelSuccess;
}

Vrel_DynLib::~Vrel_DynLib()
{
    delete delegate;
}

HRESULT Vrel_DynLib::FindSymbol(const char* symbol, void*& address)
{
    return delegate->FindSymbol(symbol, address);
}

HRESULT Vrel_DynLib::Unload()
{
    return delegate->Unload();
}
