/**
 * The object model: reference-counted interfaces, the pointer that holds them, and the intrusive
 * lists that layers and widgets are made of.
 *
 * A factory hands an object out with a count of 0. The first holder, normally a ZELObjPtr or the
 * layer a widget is added to, raises it; the Release that brings the count to exactly 0 destroys
 * the object. Counts, lists and attributes have no lock: the engine is single-threaded, and all
 * calls come from one thread.
 */
#pragma once

#include "vrel_kestrin_datatype.h"

namespace zelxxx {

/** A reference-counted object. */
class KESTRIN_EXPORT IZELObject
{
public:
    virtual ~IZELObject() {}
    /** Takes a reference and returns the new count. */
    virtual int Hold() = 0;
    /**
     * Gives a reference back and returns the new count. The object is destroyed at exactly 0: to
     * release what was never held leaves a count of -1 and destroys nothing.
     */
    virtual int Release() = 0;
};

/** An object with attributes. */
class KESTRIN_EXPORT IDynamic : public IZELObject
{
public:
    /**
     * Stores a value, narrowed to the attribute's own width, and marks the object changed, also
     * when the value is the old one. An index the object does not know is ignored.
     */
    virtual void SetAttribute(AttrIndex index, AttrValue value) = 0;
    /** Reads an attribute; 0 for an index the object does not know. */
    virtual AttrValue GetAttribute(AttrIndex index) = 0;
};

/** Reference count of class T, which implements interface I. */
template <class I, class T>
class ZELObject : public I
{
public:
    ZELObject() : _ref(0) {}
    ZELObject(const ZELObject&) = delete;
    ZELObject& operator=(const ZELObject&) = delete;
    ~ZELObject() override {}

    int Hold() override { return ++_ref; }

    int Release() override
    {
        const int count = --_ref;
        // Only exactly 0 destroys: a negative count is legal and frees nothing.
        if (count == 0)
            delete this;
        return count;
    }

protected:
    Int32 _ref;
};

/** A pointer that holds one reference to an object, or is empty. */
template <class T>
class ZELObjPtr
{
public:
    ZELObjPtr() : _ptr(nullptr) {}
    ZELObjPtr(T* object) : _ptr(object)
    {
        if (_ptr)
            _ptr->Hold();
    }
    ZELObjPtr(const ZELObjPtr& other) : ZELObjPtr(other._ptr) {}
    ~ZELObjPtr()
    {
        if (_ptr)
            _ptr->Release();
    }

    /** Holds the new object before it releases the old one, so that self-assignment is safe. */
    ZELObjPtr& operator=(T* object)
    {
        if (object)
            object->Hold();
        T* previous = _ptr;
        _ptr = object;
        if (previous)
            previous->Release();
        return *this;
    }
    // The pointer overload holds first, so self-assignment needs no test of its own.
    ZELObjPtr& operator=(const ZELObjPtr& other) // NOLINT(bugprone-unhandled-self-assignment)
    {
        return *this = other._ptr;
    }

    T* operator->() const { return _ptr; }
    operator T*() const { return _ptr; }
    bool operator==(const ZELObjPtr& other) const { return _ptr == other._ptr; }
    bool operator==(T* object) const { return _ptr == object; }

private:
    T* _ptr;
};

/**
 * Base of a class E whose objects can stand in one list of class C. An element that is destroyed
 * while it stands in a list leaves it.
 */
template <class C, class E>
class ZELElement
{
public:
    ZELElement() : _next(nullptr), _collection(nullptr) {}
    ZELElement(const ZELElement&) = delete;
    ZELElement& operator=(const ZELElement&) = delete;
    ~ZELElement()
    {
        if (_collection)
            _collection->UnlinkElement(this); // no longer an E
    }

    void SetNextElement(E* next) { _next = next; }
    E* GetNextElement() const { return _next; }
    void SetCollection(C* collection) { _collection = collection; }
    C* GetCollection() const { return _collection; }

private:
    E* _next;
    C* _collection;
};

/**
 * A singly linked list through its elements. With HoldsElements it keeps one reference on each.
 *
 * C is the class that derives from this one. Insertion order is list order.
 */
template <class C, class E, bool HoldsElements>
class ZELCollection
{
public:
    ZELCollection() : _elements(nullptr) {}
    ZELCollection(const ZELCollection&) = delete;
    ZELCollection& operator=(const ZELCollection&) = delete;

    E* GetFirstElement() const { return _elements; }

    /** The element at a position counted from 0, or null. */
    E* GetElement(int position) const
    {
        E* element = _elements;
        while (element && position-- > 0)
            element = element->GetNextElement();
        return element;
    }

    /** Moves an element to the tail, out of whatever list it is in. */
    void AddElement(E* element) { InsertElement(element, nullptr); }

    /**
     * Moves an element, out of whatever list it is in, to just before `successor`, or to the tail
     * when that is null or does not stand in this list.
     */
    void InsertElement(E* element, E* successor)
    {
        if (HoldsElements)
            element->Hold();
        if (C* old = element->GetCollection()) {
            old->UnlinkElement(element);
            if (HoldsElements)
                element->Release();
        }
        E* previous = nullptr;
        E* at = _elements;
        for (; at && at != successor; at = at->GetNextElement())
            previous = at;
        SetSuccessor(previous, element);
        element->SetNextElement(at);
        element->SetCollection(static_cast<C*>(this));
    }

    /** Unlinks and releases an element; one that is not in this list is left alone. */
    void RemoveElement(E* element)
    {
        if (UnlinkElement(element) && HoldsElements)
            element->Release();
    }

    /** Empties the list, releasing its elements in order. */
    void ReleaseElements()
    {
        while (E* element = _elements)
            RemoveElement(element);
    }

    /** Takes an element out without releasing it; false when it is not in this list. */
    bool UnlinkElement(ZELElement<C, E>* element)
    {
        E* previous = nullptr;
        E* at = _elements;
        for (; at && static_cast<ZELElement<C, E>*>(at) != element; at = at->GetNextElement())
            previous = at;
        if (!at)
            return false;
        SetSuccessor(previous, element->GetNextElement());
        element->SetNextElement(nullptr);
        element->SetCollection(nullptr);
        return true;
    }

private:
    void SetSuccessor(E* previous, E* next)
    {
        if (previous)
            previous->SetNextElement(next);
        else
            _elements = next;
    }

    E* _elements;
};

} // namespace zelxxx
