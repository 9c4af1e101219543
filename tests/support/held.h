/** A widget of the engine's own class, held for the length of a test. */
#pragma once

#include "twidget.h"

#include <utility>

namespace kestrin_test {

/** Makes a widget and holds it. Its class has the counting functions of two bases. */
template <class W>
class Held
{
public:
    template <class... Arguments>
    explicit Held(Arguments&&... arguments) : _widget(new W(std::forward<Arguments>(arguments)...))
    {
        Base()->Hold();
    }
    ~Held() { Release(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    /** Gives the reference back before the test ends. */
    void Release()
    {
        if (_widget)
            Base()->Release();
        _widget = nullptr;
    }

    W* operator->() const { return _widget; }
    operator W*() const { return _widget; }
    W& operator*() const { return *_widget; }
    /** The count, for comparison. */
    int Count() const
    {
        Base()->Hold();
        return Base()->Release();
    }

private:
    zelxxx::WidgetBase* Base() const { return _widget; }

    W* _widget;
};

} // namespace kestrin_test
