#include "tscene.h"
#include "twidget.h"
#include "vrel_kestrin_anim.h"

namespace zelxxx {

ModifierBase::~ModifierBase() = default;

void ModifierBase::Modify(IWidget*) {}

int ModifierBase::Hold()
{
    return static_cast<Modifier*>(this)->ZELObject<IModifier, Modifier>::Hold();
}

int ModifierBase::Release()
{
    return static_cast<Modifier*>(this)->ZELObject<IModifier, Modifier>::Release();
}

void ModifierBase::SetDirty()
{
    if (Widget && Widget->ParentScene)
        Widget->ParentScene->SetDirty();
}

void Modifier::Enable(bool enabled)
{
    if (enabled == Enabled)
        return;
    Enabled = enabled;
    SetDirty();
}

} // namespace zelxxx
