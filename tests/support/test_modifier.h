/** A modifier whose effect is a function of the test. */
#pragma once

#include "vrel_kestrin_anim.h"

#include <functional>
#include <utility>

namespace kestrin_test {

class TestModifier : public zelxxx::Modifier
{
public:
    using Effect = std::function<void(zelxxx::IWidget*)>;

    /** @param destroyed  counts the modifier's end, if not null */
    explicit TestModifier(Effect effect = nullptr, int* destroyed = nullptr)
        : _effect(std::move(effect)), _destroyed(destroyed)
    {
    }
    ~TestModifier() override
    {
        if (_destroyed)
            ++*_destroyed;
    }

    void Modify(zelxxx::IWidget* widget) override
    {
        if (_effect && Enabled)
            _effect(widget);
    }

    void SetAttribute(zelxxx::AttrIndex, zelxxx::AttrValue) override {}
    zelxxx::AttrValue GetAttribute(zelxxx::AttrIndex) override { return 0; }

    /** Replaces the effect from the next update on, and asks the scene for one. */
    void SetEffect(Effect effect)
    {
        _effect = std::move(effect);
        SetDirty();
    }

    int Count() const { return _ref; }

private:
    Effect _effect;
    int* _destroyed;
};

} // namespace kestrin_test
