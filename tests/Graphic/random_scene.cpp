#include "random_scene.h"

#include <algorithm>

namespace kestrin_test {

using namespace zelxxx;

namespace {

constexpr int kLayers = 6;
constexpr int kRectangles = 12;
constexpr int kTexts = 3;
constexpr int kTextHeight = 30; // room for all of every glyph

template <class Interface>
Interface* As(IWidget* widget)
{
    return dynamic_cast<Interface*>(widget);
}

} // namespace

void LineFormater::Format(IText* text, PtrWChar units, UInt32 length)
{
    text->AddColorInfo(200, 40, 90, 255);
    for (UInt32 i = 0; i < length; ++i)
        text->AddCharInfo(static_cast<Int16>(2 + 9 * i), 1, 0, units[i]);
}

void LineFormater::GetCharBuffer(const CharMetrics* char_metrics, ColorValue, BlendValue,
                                 PtrSChar buffer)
{
    const int size = char_metrics->width * char_metrics->height;
    for (int i = 0; i < size; ++i)
        buffer[i] = static_cast<SChar>(char_metrics->buffer[i] > 127 ? 60 : 0);
}

RandomScene::RandomScene(IScene* scene, IResource* resource, std::uint32_t seed,
                         RandomSceneKind kind)
    : _scene(scene), _kind(kind), _random(seed), _resource(resource)
{
    MakeNodes();
}

void RandomScene::MakeNodes()
{
    const auto add = [this](Type type, IWidget* widget) -> Node& {
        _nodes.emplace_back();
        _nodes.back().type = type;
        _nodes.back().widget = widget;
        return _nodes.back();
    };
    for (int i = 0; i < kLayers; ++i) {
        ILayer* layer = zelCreateLayer(nullptr);
        add(Type::Layer, layer);
        if (i < 2)
            _scene->AddLayer(layer);
        if (i == 0)
            _root = layer->GetLayer();
    }
    // The last one carries the texts: it is neither scaled nor clipped, nor in one that is, since
    // a glyph cut at the bottom reaches a row further than its widget.
    _layer_count = kLayers;
    _scene->AddLayer(As<ILayer>(_nodes[kLayers - 1].widget));
    for (std::size_t i = 2; i + 1 < kLayers; ++i)
        RandomParent(i)->AddWidget(_nodes[i].widget);
    for (int i = 0; i < kRectangles; ++i) {
        Node& node = add(Type::Rectangle, zelCreateRectangle(nullptr));
        node.widget->SetAttribute(AttrPosX, _random.Between(-20, _kind.width));
        node.widget->SetAttribute(AttrPosY, _random.Between(-20, _kind.height));
        node.widget->SetAttribute(AttrSpanX, _random.Between(1, 60));
        node.widget->SetAttribute(AttrSpanY, _random.Between(1, 60));
        node.widget->SetAttribute(AttrColor, Color());
        node.widget->SetAttribute(AttrBlend, Opacity());
        if (!_kind.plain && i % 4 == 0)
            node.marked_always = true; // may get a border
        if (!_kind.plain && !_kind.palette && i % 6 == 1) {
            node.marked_always = true;
            node.widget->SetAttribute(AttrBlendMode, BlendSrcCopy);
        }
        RandomParent(_nodes.size() - 1)->AddWidget(node.widget);
    }
    for (int i = 0; i < kTexts; ++i) {
        IText* text = zelCreateText(_resource);
        Node& node = add(Type::Text, text);
        text->SetAttribute(AttrFontIndex, 1);
        text->SetAttribute(AttrFontSize, 14);
        text->SetAttribute(AttrSpanX, 70);
        text->SetAttribute(AttrSpanY, kTextHeight);
        text->SetAttribute(AttrPosX, 10 * i);
        text->SetAttribute(AttrPosY, 25 * i);
        SetRandomText(text);
        As<ILayer>(_nodes[kLayers - 1].widget)->AddWidget(node.widget);
    }
}

void RandomScene::SetRandomText(IText* text)
{
    char letters[6];
    for (char& letter : letters)
        letter = static_cast<char>(_random.Between('A', 'z'));
    const auto length = static_cast<UInt32>(_random.Between(0, sizeof letters));
    text->SetText(letters, length, EncodingASCII, &_formater);
}

void RandomScene::Step()
{
    _log.clear();
    for (int i = _random.Between(1, 4); i > 0; --i)
        Change();
    for (Node& node : _nodes) {
        if (node.marked_always)
            MarkChanged(node);
        for (auto& modifier : node.modifiers)
            modifier->SetDirty();
    }
}

void RandomScene::Change()
{
    const auto index =
        static_cast<std::size_t>(_random.Between(0, static_cast<int>(_nodes.size()) - 1));
    Node& node = _nodes[index];
    _log += " #" + std::to_string(index);
    const int kind = _random.Between(1, 100);
    if (kind <= 12)
        ChangeTree(index);
    else if (kind <= 20)
        ChangeModifier(node);
    else if (kind <= 28)
        Set(node, AttrPosZ, _random.Between(-2, 2));
    else if (kind <= 36) {
        const bool visible = _random.Chance(70);
        _log += visible ? " show" : " hide";
        node.widget->SetVisibility(visible);
        // Opacity 0 before and after says nothing of what is drawn at opacity 0.
        MarkAll(node.widget);
    } else if (node.type == Type::Layer)
        ChangeLayer(node);
    else if (node.type == Type::Rectangle)
        ChangeRectangle(node);
    else
        ChangeText(node);
}

void RandomScene::ChangePlace(Node& node)
{
    switch (_random.Between(0, 3)) {
    case 0:
        return Set(node, AttrPosX, _random.Between(-30, _kind.width));
    case 1:
        return Set(node, AttrPosY, _random.Between(-30, _kind.height));
    case 2:
        return Set(node, AttrOriginX, _random.Between(-10, 10));
    default:
        return Set(node, AttrOriginY, _random.Between(-10, 10));
    }
}

void RandomScene::ChangeLayer(Node& node)
{
    const bool carries_text = &node == &_nodes[kLayers - 1];
    switch (_random.Between(0, carries_text ? 5 : 11)) {
    case 0:
    case 1:
        return ChangePlace(node);
    case 2:
        return Set(node, AttrBkgndColor, Color());
    case 3:
        return Set(node, AttrBkgndBlend, _random.Chance(30) ? 0 : Opacity());
    case 4:
        Set(node, AttrBlend, _random.Chance(30) ? 255 : Opacity());
        return MarkAll(node.widget);
    case 5:
        return Set(node, _random.Chance(50) ? AttrScrollX : AttrScrollY, _random.Between(-20, 20));
    case 6:
        return Set(node, _random.Chance(50) ? AttrScaleX : AttrScaleY,
                   _random.Chance(50) ? 256 : _random.Between(64, 600));
    case 7:
    case 8:
        return Set(node, _random.Chance(50) ? AttrSpanX : AttrSpanY,
                   _random.Chance(30) ? 10000 : _random.Between(0, 120));
    case 9:
        As<ILayer>(node.widget)->EnableAnchors(_random.Chance(70));
        return;
    default:
        return Set(node, static_cast<AttrIndex>(_random.Between(AttrClipLeft, AttrClipBottom)),
                   _random.Between(-20, 20));
    }
}

void RandomScene::ChangeRectangle(Node& node)
{
    switch (_random.Between(0, 6)) {
    case 0:
    case 1:
        return ChangePlace(node);
    case 2:
        return Set(node, _random.Chance(50) ? AttrSpanX : AttrSpanY, _random.Between(0, 70));
    case 3:
        return Set(node, AttrColor, Color());
    case 4:
        return Set(node, AttrBlend, Opacity());
    case 5:
        node.widget->SetAnchors(static_cast<UInt8>(_random.Between(0, 15)));
        return;
    default:
        if (!node.marked_always)
            return Set(node, AttrScaleX, _random.Between(0, 600));
        if (_random.Chance(50))
            return Set(node, AttrBorderWidth, _random.Between(-1, 8));
        return Set(node, AttrBorderColor, Color());
    }
}

void RandomScene::ChangeText(Node& node)
{
    switch (_random.Between(0, 3)) {
    case 0:
        return Set(node, AttrPosX, _random.Between(-20, _kind.width));
    case 1:
        return Set(node, AttrPosY, _random.Between(-20, _kind.height));
    case 2:
        Set(node, AttrBlend, Opacity());
        // Glyphs take the widget's own opacity, which may differ where the product does not.
        return MarkChanged(node);
    default:
        _log += " text";
        SetRandomText(As<IText>(node.widget));
        return;
    }
}

void RandomScene::ChangeTree(std::size_t index)
{
    Node& node = _nodes[index];
    ILayer* layer = LayerOf(node);
    if (layer && _random.Chance(40)) {
        if (node.parked || _random.Chance(20)) {
            node.parked = !node.parked;
            _log += node.parked ? " park" : " complete";
            node.widget->SetRemoving(node.parked);
            layer->RemoveWidget(nullptr);
        } else {
            _log += " remove";
            layer->RemoveWidget(node.widget);
        }
        return;
    }
    node.parked = false;
    const bool is_text = node.type == Type::Text;
    ILayer* parent = is_text ? As<ILayer>(_nodes[kLayers - 1].widget) : RandomParent(index);
    if (index == kLayers - 1)
        parent = _root;
    if (!IsInScene(parent))
        return;
    if (_random.Chance(50)) {
        _log += " add";
        parent->AddWidget(node.widget);
    } else {
        _log += " insert";
        IWidget* beside = _nodes[static_cast<std::size_t>(
                                     _random.Between(0, static_cast<int>(_nodes.size()) - 1))]
                              .widget;
        if (beside->GetLayer() != parent)
            beside = nullptr;
        const auto position =
            static_cast<WidgetInstertPosition>(1 << _random.Between(0, beside ? 3 : 1));
        parent->InsertWidget(node.widget, beside, position);
    }
    MarkAll(node.widget);
}

void RandomScene::ChangeModifier(Node& node)
{
    // What shows a text below its layer's other texts: texts and their layer stay unmodified.
    if (node.type == Type::Text || &node == &_nodes[kLayers - 1])
        return;
    if (node.modifiers.size() < 2 && _random.Chance(60)) {
        _log += " modifier";
        auto* modifier = new TestModifier(RandomEffect());
        node.modifiers.emplace_back(modifier);
        node.widget->AddModifier(modifier);
    } else if (!node.modifiers.empty()) {
        TestModifier* modifier = node.modifiers.back();
        switch (_random.Between(0, 2)) {
        case 0:
            _log += " unmodify";
            node.widget->RemoveModifier(modifier);
            node.modifiers.pop_back();
            break;
        case 1:
            _log += " enable";
            modifier->Enable(_random.Chance(50));
            break;
        default:
            _log += " effect";
            modifier->SetEffect(RandomEffect());
            break;
        }
    }
    MarkAll(node.widget);
}

/** Effects that change at every update. */
TestModifier::Effect RandomScene::RandomEffect()
{
    const int dx = _random.Between(-3, 3);
    const int dy = _random.Between(-3, 3);
    const int dz = _random.Between(-1, 1);
    const int fade = _random.Chance(50) ? _random.Between(-9, 9) : 0;
    auto time = std::make_shared<int>(0);
    return [=](IWidget* copy) {
        const int t = ++*time % 20;
        copy->SetAttribute(AttrPosX, copy->GetAttribute(AttrPosX) + dx * t);
        copy->SetAttribute(AttrPosY, copy->GetAttribute(AttrPosY) + dy * t);
        if (dz != 0)
            copy->SetAttribute(AttrPosZ, copy->GetAttribute(AttrPosZ) + dz * (t / 5));
        if (fade != 0)
            copy->SetAttribute(AttrBlend,
                               ((copy->GetAttribute(AttrBlend) + fade * t) & 0x7f) | 0x40);
    };
}

ILayer* RandomScene::LayerOf(const Node& node) const
{
    return node.widget->GetLayer();
}

/** The root, or a layer that stands before the widget; never the layer of the texts. */
ILayer* RandomScene::RandomParent(std::size_t index)
{
    const int count = static_cast<int>(std::min<std::size_t>(index, _layer_count - 1));
    const int choice = _random.Between(-1, count - 1);
    return choice < 0 ? _root : As<ILayer>(_nodes[static_cast<std::size_t>(choice)].widget);
}

bool RandomScene::IsIn(IWidget* widget, IWidget* ancestor) const
{
    while (widget && widget != ancestor)
        widget = widget->GetLayer();
    return widget != nullptr;
}

void RandomScene::MarkAll(IWidget* widget)
{
    for (const Node& node : _nodes) {
        if (!IsIn(node.widget, widget))
            continue;
        for (AttrIndex index : {AttrPosX, AttrPosZ, AttrBlend, AttrScaleX})
            node.widget->SetAttribute(index, node.widget->GetAttribute(index));
        MarkChanged(node);
    }
}

void RandomScene::MarkChanged(const Node& node)
{
    const AttrIndex index = node.type == Type::Layer ? AttrBkgndColor : AttrColor;
    node.widget->SetAttribute(index, node.widget->GetAttribute(index));
}

void RandomScene::Set(Node& node, AttrIndex index, int value)
{
    _log += " " + std::to_string(index) + "=" + std::to_string(value);
    node.widget->SetAttribute(index, value);
}

/** An opacity; on a palette nothing is drawn by it, and it never comes out 0. */
int RandomScene::Opacity()
{
    if (_kind.palette)
        return _random.Between(128, 255);
    return _random.Chance(40) ? 255 : _random.Between(0, 255);
}

int RandomScene::Color()
{
    return _kind.palette ? _random.Between(1, 187) : _random.Between(0, 0xffffff);
}

} // namespace kestrin_test
