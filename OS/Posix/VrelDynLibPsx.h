/** The library opened with dlopen behind Vrel_DynLib. */
#pragma once

#include "vrel_kestrin_dynlib.h"

class Vrel_MipsDynLib : public Vrel_IDynLib
{
public:
    /** @param handle  what dlopen returned; stays open when this object goes */
    explicit Vrel_MipsDynLib(void* handle) : library(handle) {}

    HRESULT FindSymbol(const char* symbol, void*& address) override;
    HRESULT Unload() override;

private:
    void* const library;
};
