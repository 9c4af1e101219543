#include "vrel_kestrin_obj.h"

#include <vector>

#include <gtest/gtest.h>

using zelxxx::IZELObject;
using zelxxx::ZELCollection;
using zelxxx::ZELElement;
using zelxxx::ZELObject;
using zelxxx::ZELObjPtr;

namespace {

/** An object that tells when it is destroyed. */
class Thing : public ZELObject<IZELObject, Thing>
{
public:
    explicit Thing(int& destroyed) : _destroyed(destroyed) {}
    ~Thing() override { ++_destroyed; }
    int Count() const { return _ref; }

private:
    int& _destroyed;
};

TEST(ReferenceCount, IsZeroForANewObject)
{
    int destroyed = 0;
    Thing thing(destroyed);
    EXPECT_EQ(thing.Count(), 0);
}

TEST(ReferenceCount, HoldAnswersTheNewCountAndTheLastReleaseDestroys)
{
    int destroyed = 0;
    IZELObject* thing = new Thing(destroyed);
    EXPECT_EQ(thing->Hold(), 1);
    EXPECT_EQ(thing->Hold(), 2);
    EXPECT_EQ(thing->Release(), 1);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(thing->Release(), 0);
    EXPECT_EQ(destroyed, 1);
}

TEST(ReferenceCount, ReleaseOfWhatWasNeverHeldGoesBelowZeroAndDestroysNothing)
{
    int destroyed = 0;
    Thing thing(destroyed);
    EXPECT_EQ(thing.Release(), -1);
    EXPECT_EQ(thing.Release(), -2);
    EXPECT_EQ(destroyed, 0);
    // On its way up it passes 0 without harm, too.
    EXPECT_EQ(thing.Hold(), -1);
    EXPECT_EQ(thing.Hold(), 0);
    EXPECT_EQ(destroyed, 0);
}

TEST(ObjectPointer, HoldsWhileItPoints)
{
    int destroyed = 0;
    auto* thing = new Thing(destroyed);
    {
        ZELObjPtr<Thing> first(thing);
        EXPECT_EQ(thing->Count(), 1);
        {
            ZELObjPtr<Thing> second;
            second = first;
            ZELObjPtr<Thing> third(second);
            EXPECT_EQ(thing->Count(), 3);
        }
        EXPECT_EQ(thing->Count(), 1);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(ObjectPointer, EmptyOneHoldsNothing)
{
    ZELObjPtr<Thing> pointer;
    EXPECT_EQ(static_cast<Thing*>(pointer), nullptr);
    pointer = nullptr;
    EXPECT_EQ(static_cast<Thing*>(pointer), nullptr);
}

TEST(ObjectPointer, AssignmentOfItsOwnObjectKeepsItAlive)
{
    int destroyed = 0;
    auto* thing = new Thing(destroyed);
    ZELObjPtr<Thing> pointer(thing);
    pointer = thing;
    EXPECT_EQ(thing->Count(), 1);
    const ZELObjPtr<Thing>& same = pointer;
    pointer = same;
    EXPECT_EQ(thing->Count(), 1);
    EXPECT_EQ(destroyed, 0);
}

TEST(ObjectPointer, AssignmentReleasesWhatItHeld)
{
    int first_destroyed = 0;
    int second_destroyed = 0;
    auto* second = new Thing(second_destroyed);
    ZELObjPtr<Thing> pointer(new Thing(first_destroyed));
    pointer = second;
    EXPECT_EQ(first_destroyed, 1);
    EXPECT_EQ(second->Count(), 1);
    pointer = nullptr;
    EXPECT_EQ(second_destroyed, 1);
}

/** Owns another object, which only lives as long as it. */
class Owner : public ZELObject<IZELObject, Owner>
{
public:
    explicit Owner(Thing* owned) : _owned(owned) {}

private:
    ZELObjPtr<Thing> _owned;
};

TEST(ObjectPointer, HoldsTheNewObjectBeforeTheOldOneGoes)
{
    int destroyed = 0;
    auto* owned = new Thing(destroyed);
    ZELObjPtr<IZELObject> pointer(new Owner(owned));
    pointer = owned; // the owner goes here and must not take it along
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(owned->Count(), 1);
}

TEST(ObjectPointer, ComparesByObject)
{
    int destroyed = 0;
    auto* thing = new Thing(destroyed);
    ZELObjPtr<Thing> first(thing);
    ZELObjPtr<Thing> second(thing);
    ZELObjPtr<Thing> other(new Thing(destroyed));
    EXPECT_TRUE(first == second);
    EXPECT_TRUE(first == thing);
    EXPECT_TRUE(thing == first);
    EXPECT_FALSE(first == nullptr);
    EXPECT_FALSE(other == static_cast<const Thing*>(thing));
    EXPECT_FALSE(first == other);
    EXPECT_EQ(first->Count(), 2);
}

class Item;

class List : public ZELCollection<List, Item, true>
{
};

class Item : public ZELElement<List, Item>, public ZELObject<IZELObject, Item>
{
public:
    explicit Item(std::vector<Item*>* destroyed = nullptr) : _destroyed(destroyed) {}
    ~Item() override
    {
        if (_destroyed)
            _destroyed->push_back(this);
    }
    int Count() const { return _ref; }

private:
    std::vector<Item*>* _destroyed;
};

std::vector<const Item*> Contents(const List& list)
{
    std::vector<const Item*> contents;
    for (const Item* item = list.GetFirstElement(); item; item = item->GetNextElement())
        contents.push_back(item);
    return contents;
}

using Order = std::vector<const Item*>;

class Collection : public testing::Test
{
protected:
    void SetUp() override
    {
        for (Item** item : {&a, &b, &c}) {
            *item = new Item(&destroyed);
            (*item)->Hold();
        }
    }

    void TearDown() override
    {
        list.ReleaseElements();
        other.ReleaseElements();
        for (Item* item : {a, b, c})
            item->Release();
    }

    void AddAll()
    {
        for (Item* item : {a, b, c})
            list.AddElement(item);
    }

    std::vector<Item*> destroyed;
    List list;
    List other;
    Item* a = nullptr;
    Item* b = nullptr;
    Item* c = nullptr;
};

TEST_F(Collection, StartsEmpty)
{
    EXPECT_EQ(list.GetFirstElement(), nullptr);
    EXPECT_EQ(list.GetElement(0), nullptr);
    EXPECT_EQ(a->GetNextElement(), nullptr);
    EXPECT_EQ(a->GetCollection(), nullptr);
}

TEST_F(Collection, AddAppendsAndHolds)
{
    AddAll();
    EXPECT_EQ(Contents(list), (Order{a, b, c}));
    for (Item* item : {a, b, c}) {
        EXPECT_EQ(item->Count(), 2);
        EXPECT_EQ(item->GetCollection(), &list);
    }
    EXPECT_EQ(c->GetNextElement(), nullptr);
    EXPECT_EQ(list.GetElement(0), a);
    EXPECT_EQ(list.GetElement(2), c);
    EXPECT_EQ(list.GetElement(3), nullptr);
}

TEST_F(Collection, AddOfAnElementAlreadyInItMovesItToTheTail)
{
    AddAll();
    list.AddElement(a);
    EXPECT_EQ(Contents(list), (Order{b, c, a}));
    EXPECT_EQ(a->Count(), 2);
    list.AddElement(a);
    EXPECT_EQ(Contents(list), (Order{b, c, a}));
    EXPECT_EQ(a->Count(), 2);
}

TEST_F(Collection, AddTakesTheElementOutOfAnotherCollection)
{
    AddAll();
    other.AddElement(b);
    EXPECT_EQ(Contents(list), (Order{a, c}));
    EXPECT_EQ(Contents(other), (Order{b}));
    EXPECT_EQ(b->GetCollection(), &other);
    EXPECT_EQ(b->GetNextElement(), nullptr);
    EXPECT_EQ(b->Count(), 2);
}

TEST_F(Collection, AddMovesAnElementThatOnlyItsCollectionHolds)
{
    auto* item = new Item(&destroyed);
    list.AddElement(item);
    EXPECT_EQ(item->Count(), 1);
    other.AddElement(item);
    other.AddElement(item);
    EXPECT_TRUE(destroyed.empty());
    EXPECT_EQ(item->Count(), 1);
}

TEST_F(Collection, RemoveUnlinksFromHeadMiddleAndTail)
{
    AddAll();
    list.RemoveElement(b);
    EXPECT_EQ(Contents(list), (Order{a, c}));
    list.RemoveElement(a);
    EXPECT_EQ(Contents(list), (Order{c}));
    list.RemoveElement(c);
    EXPECT_EQ(Contents(list), Order());
    for (Item* item : {a, b, c}) {
        EXPECT_EQ(item->Count(), 1);
        EXPECT_EQ(item->GetNextElement(), nullptr);
        EXPECT_EQ(item->GetCollection(), nullptr);
    }
}

TEST_F(Collection, RemoveDestroysWhatNobodyElseHolds)
{
    auto* item = new Item(&destroyed);
    list.AddElement(item);
    list.RemoveElement(item);
    EXPECT_EQ(destroyed, std::vector<Item*>{item});
}

TEST_F(Collection, RemoveOfAForeignElementChangesAndReleasesNothing)
{
    list.AddElement(a);
    other.AddElement(b);
    list.RemoveElement(b);
    list.RemoveElement(c);
    EXPECT_EQ(Contents(list), (Order{a}));
    EXPECT_EQ(Contents(other), (Order{b}));
    EXPECT_EQ(b->GetCollection(), &other);
    EXPECT_EQ(b->Count(), 2);
    EXPECT_EQ(c->Count(), 1);
}

TEST_F(Collection, ReleaseElementsEmptiesInOrder)
{
    auto* first = new Item(&destroyed);
    auto* second = new Item(&destroyed);
    list.AddElement(first);
    list.AddElement(a);
    list.AddElement(second);
    list.ReleaseElements();
    EXPECT_EQ(list.GetFirstElement(), nullptr);
    EXPECT_EQ(destroyed, (std::vector<Item*>{first, second}));
    EXPECT_EQ(a->Count(), 1);
    EXPECT_EQ(a->GetCollection(), nullptr);
    EXPECT_EQ(a->GetNextElement(), nullptr);
}

TEST_F(Collection, InsertPutsBeforeTheSuccessor)
{
    list.AddElement(a);
    list.AddElement(b);
    list.InsertElement(c, b);
    EXPECT_EQ(Contents(list), (Order{a, c, b}));
    list.InsertElement(b, a);
    EXPECT_EQ(Contents(list), (Order{b, a, c}));
    for (Item* item : {a, b, c})
        EXPECT_EQ(item->Count(), 2);
}

TEST_F(Collection, InsertBeforeNothingOrAForeignElementAppends)
{
    list.AddElement(a);
    other.AddElement(c);
    list.InsertElement(b, c);
    EXPECT_EQ(Contents(list), (Order{a, b}));
    list.InsertElement(a, nullptr);
    EXPECT_EQ(Contents(list), (Order{b, a}));
}

TEST_F(Collection, ADestroyedElementLeavesIt)
{
    auto* item = new Item(&destroyed);
    AddAll();
    list.InsertElement(item, b);
    item->Release(); // gives away the collection's own reference
    EXPECT_EQ(destroyed, std::vector<Item*>{item});
    EXPECT_EQ(Contents(list), (Order{a, b, c}));
}

class LooseList;

class LooseItem : public ZELElement<LooseList, LooseItem>
{
public:
    void Hold() { ADD_FAILURE() << "held"; }
    void Release() { ADD_FAILURE() << "released"; }
};

class LooseList : public ZELCollection<LooseList, LooseItem, false>
{
};

TEST(CollectionWithoutReferences, NeitherHoldsNorReleases)
{
    LooseItem first;
    LooseItem second;
    LooseList list;
    list.AddElement(&first);
    list.AddElement(&second);
    list.AddElement(&first);
    EXPECT_EQ(list.GetFirstElement(), &second);
    list.RemoveElement(&second);
    EXPECT_EQ(list.GetFirstElement(), &first);
    list.ReleaseElements();
    EXPECT_EQ(list.GetFirstElement(), nullptr);
    EXPECT_EQ(first.GetCollection(), nullptr);
}

} // namespace
