// The index behind a long list of named items: finds the first item of a name in constant time. An open hash
// table holds one slot for every name, with the first item of that name; items that share a name with an
// earlier one wait beside it, in order.
//
// Items have m_name and m_order. The index owns nothing; it must be told before an item goes or changes its
// name, and it serves one locale: once the locale has changed it must be made anew, unless all names are
// ASCII (IsStale).
#pragma once

#include "quarn/text/name_compare.h"

#include <bit>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Quarn::detail {

template<typename Item>
class NameIndex
{
public:
    // An empty index with room for `count` names.
    explicit NameIndex(std::size_t count) : m_slots(std::bit_ceil(count * 2)) {}

    // Whether a changed locale may have changed which names outside ASCII are equal.
    bool IsStale() const { return !m_locale.empty() && m_locale != NameLocale(); }

    // The first item with this name, null when there is none.
    Item* Find(std::string_view name, NameHash hash) const { return m_slots[FindSlot(name, hash)].first; }

    // On an exception the index is no longer complete.
    void Insert(Item* item)
    {
        NameHash const hash = HashName(item->m_name);
        if (!hash.isAscii && m_locale.empty()) {
            m_locale = NameLocale();
        }
        Slot& slot = m_slots[FindSlot(item->m_name, hash)];
        if (slot.first == nullptr) {
            slot = {hash.value, item};
            ++m_count;
            if (m_count > m_slots.size() / 4 * 3) {
                Grow();
            }
            return;
        }
        if (item->m_order < slot.first->m_order) {
            m_followers[slot.first].insert(slot.first);
            Reseat(slot, item);
        } else {
            m_followers[slot.first].insert(item);
        }
    }

    // The item is in the index, under the name that it has now.
    void Erase(Item* item) noexcept
    {
        std::size_t const place = FindSlot(item->m_name, HashName(item->m_name));
        Slot& slot = m_slots[place];
        auto const group = m_followers.find(slot.first);
        if (group == m_followers.end()) {
            Empty(place);
            return;
        }
        if (slot.first == item) {
            Item* const next = *group->second.begin();
            group->second.erase(group->second.begin());
            Reseat(slot, next);
        } else {
            group->second.erase(item);
        }
        auto const changed = m_followers.find(slot.first);
        if (changed->second.empty()) {
            m_followers.erase(changed);
        }
    }

private:
    struct Slot
    {
        std::uint64_t hash = 0;
        Item* first = nullptr;
    };
    struct InOrder
    {
        bool operator()(Item const* a, Item const* b) const { return a->m_order < b->m_order; }
    };

    std::size_t Mask() const { return m_slots.size() - 1; }

    // The slot of a name, or the empty slot where it belongs.
    std::size_t FindSlot(std::string_view name, NameHash hash) const
    {
        std::size_t place = hash.value & Mask();
        while (m_slots[place].first != nullptr &&
               (m_slots[place].hash != hash.value || !EqualNames(m_slots[place].first->m_name, name))) {
            place = (place + 1) & Mask();
        }
        return place;
    }

    // Makes another item the first of its name; the items beside the old one go with it.
    void Reseat(Slot& slot, Item* item) noexcept
    {
        auto group = m_followers.extract(slot.first);
        group.key() = item;
        m_followers.insert(std::move(group));
        slot.first = item;
    }

    // Empties a slot and closes the gap, so that every name can still be reached from its own place.
    void Empty(std::size_t place) noexcept
    {
        --m_count;
        std::size_t gap = place;
        for (std::size_t next = (gap + 1) & Mask(); m_slots[next].first != nullptr;
             next = (next + 1) & Mask()) {
            std::size_t const wanted = m_slots[next].hash & Mask();
            if (((next - wanted) & Mask()) >= ((next - gap) & Mask())) {
                m_slots[gap] = m_slots[next];
                gap = next;
            }
        }
        m_slots[gap] = {};
    }

    void Grow()
    {
        std::vector<Slot> const old = std::exchange(m_slots, std::vector<Slot>(m_slots.size() * 2));
        for (Slot const& slot : old) {
            if (slot.first != nullptr) {
                std::size_t place = slot.hash & Mask();
                while (m_slots[place].first != nullptr) {
                    place = (place + 1) & Mask();
                }
                m_slots[place] = slot;
            }
        }
    }

    std::vector<Slot> m_slots; // a power of two, at most three quarters in use
    std::size_t m_count = 0;
    std::map<Item*, std::set<Item*, InOrder>> m_followers; // by the first item of their name
    std::string m_locale;                                  // empty as long as all names are ASCII
};

} // namespace Quarn::detail
