/**
 * @file
 * The object model: reference-counted interfaces, the pointer that holds them, and the intrusive
 * lists that layers and widgets are made of.
 *
 * Ownership: a factory hands an object out with a count of 0. The first holder, normally a
 * ZELObjPtr or the layer a widget is added to, raises it; the Release that brings the count to
 * exactly 0 destroys the object, and with it what it holds, so that a tree goes from the top.
 *
 *     ZELObjPtr<ILayer> layer(zelCreateLayer(nullptr)); // count 1
 *     layer->AddWidget(zelCreateRectangle(nullptr));    // the layer holds it alone
 *
 * Failures: none. Threads: counts, lists and attributes have no lock; all calls come from the one
 * thread that uses the engine.
 */
#pragma once

#include "vrel_kestrin_datatype.h"

namespace zelxxx {

/**
 * @defgroup objects Object model
 * Reference counts, attributes, holding pointers and intrusive lists.
 * @{
 */

/** A reference-counted object. */
class KESTRIN_EXPORT IZELObject
{
public:
    /** Called by Release; clients do not delete. */
    virtual ~IZELObject() {}
    /** Takes a reference. @return the new count */
    virtual int Hold() = 0;
    /**
     * Gives a reference back. The object is destroyed at exactly 0: to release what was never held
     * leaves a count of -1 and destroys nothing.
     *
     * @return the new count
     */
    virtual int Release() = 0;
};

/** An object with attributes. */
class KESTRIN_EXPORT IDynamic : public IZELObject
{
public:
    /**
     * Stores a value and marks the object changed, also when the value is the old one.
     *
     * @param index  one the object does not know is ignored
     * @param value  narrowed to the attribute's own width: the low 16 bits of a MetricValue, the
     *               low 8 of a BlendValue
     */
    virtual void SetAttribute(AttrIndex index, AttrValue value) = 0;
    /**
     * Reads an attribute.
     *
     * @param index  its name
     * @return its value; 0 for an index the object does not know or that is write-only
     */
    virtual AttrValue GetAttribute(AttrIndex index) = 0;
};

/**
 * Reference count of a class that implements an interface.
 *
 * @tparam I  the interface, an IZELObject
 * @tparam T  the class, which derives from this one and is made with new
 */
template <class I, class T>
class ZELObject : public I
{
public:
    /** A count of 0. */
    ZELObject() : _ref(0) {}
    ZELObject(const ZELObject&) = delete;
    ZELObject& operator=(const ZELObject&) = delete;
    ~ZELObject() override {}

    /** Takes a reference. @return the new count */
    int Hold() override { return ++_ref; }

    /** Gives a reference back; at exactly 0 the object deletes itself. @return the new count */
    int Release() override
    {
        const int count = --_ref;
        // Only exactly 0 destroys: a negative count is legal and frees nothing.
        if (count == 0)
            delete this;
        return count;
    }

protected:
    Int32 _ref; /**< the count; below 0 after a Release too many */
};

/**
 * A pointer that holds one reference to an object, or is empty.
 *
 * @tparam T  an interface, derived from IZELObject
 */
template <class T>
class ZELObjPtr
{
public:
    /** Empty. */
    ZELObjPtr() : _ptr(nullptr) {}
    /** Holds an object. @param object  null for none */
    ZELObjPtr(T* object) : _ptr(object)
    {
        if (_ptr)
            _ptr->Hold();
    }
    /** Holds the same object once more. @param other  may be empty */
    ZELObjPtr(const ZELObjPtr& other) : ZELObjPtr(other._ptr) {}
    /** Releases the object, if there is one. */
    ~ZELObjPtr()
    {
        if (_ptr)
            _ptr->Release();
    }

    /**
     * Holds the new object, then releases the old one, so that self-assignment is safe.
     *
     * @param object  null for none
     * @return this pointer
     */
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
    /** The same with the object of another pointer. @param other  may be empty @return this */
    // The pointer overload holds first, so self-assignment needs no test of its own.
    ZELObjPtr& operator=(const ZELObjPtr& other) // NOLINT(bugprone-unhandled-self-assignment)
    {
        return *this = other._ptr;
    }

    /** @return the object, to call; there must be one */
    T* operator->() const { return _ptr; }
    /** @return the object without a reference of its own, valid while somebody holds it, or null */
    operator T*() const { return _ptr; }
    /** Whether both point to one object. @param other  may be empty @return true if so */
    bool operator==(const ZELObjPtr& other) const { return _ptr == other._ptr; }
    /** Whether it points to this object. @param object  null asks for empty @return true if so */
    bool operator==(T* object) const { return _ptr == object; }

private:
    T* _ptr;
};

/**
 * Base of a class whose objects can stand in one list. An element that is destroyed while it stands
 * in a list leaves it.
 *
 * The links are for the list; to move an element, call the list's operations.
 *
 * @tparam C  the class of the list
 * @tparam E  the class of the elements, which derives from this one
 */
template <class C, class E>
class ZELElement
{
public:
    /** In no list. */
    ZELElement() : _next(nullptr), _collection(nullptr) {}
    ZELElement(const ZELElement&) = delete;
    ZELElement& operator=(const ZELElement&) = delete;
    /** Leaves the list it is in, which does not release it. */
    ~ZELElement()
    {
        if (_collection)
            _collection->UnlinkElement(this); // no longer an E
    }

    /** For the list. @param next  the element behind this one, not held; null for the last */
    void SetNextElement(E* next) { _next = next; }
    /** The element behind this one, not held. @return null for the last and outside lists */
    E* GetNextElement() const { return _next; }
    /** For the list. @param collection  the list it stands in, not held; null for none */
    void SetCollection(C* collection) { _collection = collection; }
    /** The list it stands in. @return null outside lists */
    C* GetCollection() const { return _collection; }

private:
    E* _next;
    C* _collection;
};

/**
 * A singly linked list through its elements, in order of insertion. An element stands in one list
 * of its class at most. Searching takes time by the length.
 *
 * A list does not release what is in it when it goes: call ReleaseElements before.
 *
 * @tparam C              the class that derives from this one
 * @tparam E              the class of the elements, a ZELElement
 * @tparam HoldsElements  whether the list keeps a reference on each element
 */
template <class C, class E, bool HoldsElements>
class ZELCollection
{
public:
    /** Empty. */
    ZELCollection() : _elements(nullptr) {}
    ZELCollection(const ZELCollection&) = delete;
    ZELCollection& operator=(const ZELCollection&) = delete;

    /** The head of the list, not held. @return null when the list is empty */
    E* GetFirstElement() const { return _elements; }

    /**
     * The element at a position, not held.
     *
     * @param position  counted from 0; below counts as 0
     * @return null from the length on
     */
    E* GetElement(int position) const
    {
        E* element = _elements;
        while (element && position-- > 0)
            element = element->GetNextElement();
        return element;
    }

    /**
     * Moves an element to the tail, out of whatever list it is in.
     *
     * @param element  not null; one of this list goes to the tail with the same count
     */
    void AddElement(E* element) { InsertElement(element, nullptr); }

    /**
     * Moves an element, out of whatever list it is in, to just before another one.
     *
     * @param element    not null
     * @param successor  not `element`; null, or one that is not in this list, stands for the tail
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

    /** Unlinks and releases. @param element  not null; left alone when it is not in this list */
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

    /**
     * Takes an element out without releasing it.
     *
     * @param element  not null; only its address is looked at
     * @return false, with nothing changed, when it is not in this list
     */
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

/** @} */

} // namespace zelxxx
