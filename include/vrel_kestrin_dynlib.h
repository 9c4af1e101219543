/**
 * @file
 * Libraries that are loaded while the program runs.
 *
 * Ownership: Load makes an object that the caller deletes. The symbols it finds belong to the
 * loaded library.
 *
 * Threads: any thread may call any function, but not two with one object.
 *
 * Two things surprise:
 *
 * - Unload answers the wrong way round: 0x80004005 when the library was released, 0 when that
 *   failed. Do not test it like other results; best, do not look at it.
 * - Deleting a Vrel_DynLib leaves its library loaded. Call Unload once, then delete, and use
 *   neither its symbols nor the object in between: the object does not know that it is unloaded.
 */
#pragma once

#include "vrel_kestrin_datatype.h"
#include "vrel_kestrin_scalar.h"

/**
 * @addtogroup os
 * @{
 */

/** What a loaded library does. */
class KESTRIN_EXPORT Vrel_IDynLib
{
public:
    virtual ~Vrel_IDynLib() {}
    /**
     * Looks a function or variable up, in the library and what it was linked to.
     *
     * @param symbol   its name as the linker sees it
     * @param address  set to where it is, null when there is none; left alone for a null `symbol`
     * @return 0 when found, else 0x80004005; also for a symbol whose address is null
     */
    virtual HRESULT FindSymbol(const char* symbol, void*& address) = 0;
    /**
     * Releases the library, once; what was loaded several times stays until the last release.
     *
     * @return 0x80004005 when it was released, 0 when the system reports an error
     */
    virtual HRESULT Unload() = 0;
};

/** A library opened with dlopen. */
class KESTRIN_EXPORT Vrel_DynLib : public Vrel_IDynLib
{
public:
    /**
     * Loads a library; functions are bound when they are first called (RTLD_LAZY).
     *
     * @param filename  a path, or a name without a slash, which is looked for as the system does
     * @param library   set to a new object that the caller deletes, to null when the library cannot
     *                  be loaded; left alone for a null `filename`
     * @return 0, or 0x80004005 on failure; dlerror() says why
     */
    static HRESULT Load(const char* filename, Vrel_DynLib*& library);
    ~Vrel_DynLib() override;
    Vrel_DynLib(const Vrel_DynLib&) = delete;
    Vrel_DynLib& operator=(const Vrel_DynLib&) = delete;

    HRESULT FindSymbol(const char* symbol, void*& address) override;
    HRESULT Unload() override;

private:
    explicit Vrel_DynLib(Vrel_IDynLib* loaded) : delegate(loaded) {}

    Vrel_IDynLib* delegate; /**< owned */
};

/** @} */
