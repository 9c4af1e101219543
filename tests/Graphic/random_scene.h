/**
 * A scene that changes at random, the same way whenever it starts from the same seed.
 *
 * It does everything a client may do, but for what is known to be repainted only by force: where a
 * change marks less than it shows, the scene marks the rest, as the client's documentation advises.
 * Those cases have tests of their own.
 */
#pragma once

#include "seeded_random.h"
#include "test_modifier.h"
#include "vrel_kestrin_anim.h"

#include <memory>
#include <string>
#include <vector>

namespace kestrin_test {

/** What a scene is made of. */
struct RandomSceneKind
{
    bool palette = false; /**< colours are indices of the fixed palette */
    bool plain = false;   /**< without borders and copies, which show also where opacity is 0 */
    int width = 128;
    int height = 96;
};

/** Puts characters side by side, with a colour to start with. */
class LineFormater : public zelxxx::ITextFormater
{
public:
    void Format(zelxxx::IText* text, zelxxx::PtrWChar units, zelxxx::UInt32 length) override;
    void GetCharBuffer(const zelxxx::CharMetrics* char_metrics, zelxxx::ColorValue color,
                       zelxxx::BlendValue blend, zelxxx::PtrSChar buffer) override;
};

class RandomScene
{
public:
    /** @param resource  a font for texts */
    RandomScene(zelxxx::IScene* scene, zelxxx::IResource* resource, std::uint32_t seed,
                RandomSceneKind kind);

    /** Changes one to four things. */
    void Step();
    /** What the last step did, for messages. */
    const std::string& LastStep() const { return _log; }

private:
    enum class Type
    {
        Layer,
        Rectangle,
        Text
    };

    struct Node
    {
        Type type;
        zelxxx::ZELObjPtr<zelxxx::IWidget> widget;
        bool marked_always = false; /**< shows more than its marks tell */
        bool parked = false;
        std::vector<zelxxx::ZELObjPtr<TestModifier>> modifiers;
    };

    void MakeNodes();
    void Change();
    void ChangeLayer(Node& node);
    void ChangeRectangle(Node& node);
    void ChangeText(Node& node);
    void ChangePlace(Node& node);
    void ChangeTree(std::size_t index);
    void ChangeModifier(Node& node);
    TestModifier::Effect RandomEffect();
    void SetRandomText(zelxxx::IText* text);

    zelxxx::ILayer* LayerOf(const Node& node) const;
    zelxxx::ILayer* RandomParent(std::size_t index);
    bool IsIn(zelxxx::IWidget* widget, zelxxx::IWidget* ancestor) const;
    bool IsInScene(zelxxx::IWidget* widget) const { return IsIn(widget, _root); }
    /** Marks a widget, and what is in it, in every way. */
    void MarkAll(zelxxx::IWidget* widget);
    static void MarkChanged(const Node& node);
    void Set(Node& node, zelxxx::AttrIndex index, int value);

    int Opacity();
    int Color();

    zelxxx::IScene* _scene;
    zelxxx::ILayer* _root = nullptr;
    RandomSceneKind _kind;
    SeededRandom _random;
    LineFormater _formater;
    std::vector<Node> _nodes; /**< layers first; a layer's parent stands before it */
    std::size_t _layer_count = 0;
    zelxxx::IResource* _resource;
    std::string _log;
};

} // namespace kestrin_test
