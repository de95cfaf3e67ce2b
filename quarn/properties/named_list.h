// The list behind a key's sub-keys and behind its values: owns its items in insertion order and finds the
// first one of a name. A long list keeps an index of its names.
//
// Items have m_name and m_order, which the list sets. Every change of an item's name goes through Rename.
#pragma once

#include "quarn/properties/name_index.h"
#include "quarn/text/string.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace Quarn::detail {

template<typename Item>
class NamedList
{
public:
    NamedList() = default;
    NamedList(NamedList const&) = delete;
    NamedList& operator=(NamedList const&) = delete;
    ~NamedList()
    {
        for (Item* const item : m_items) {
            delete item;
        }
    }

    std::vector<Item*> const& Items() const { return m_items; }

    // Null when there is none.
    Item* Find(std::string_view name) const
    {
        if (m_items.size() < indexedSize) {
            auto const found = std::find_if(m_items.begin(), m_items.end(), [name](Item const* item) {
                return EqualNames(item->m_name, name);
            });
            return found != m_items.end() ? *found : nullptr;
        }
        NameHash const hash = HashName(name);
        if (m_index == nullptr || (!hash.isAscii && m_index->IsStale())) {
            MakeIndex();
        }
        return m_index->Find(name, hash);
    }

    Item* Append(std::unique_ptr<Item> item)
    {
        if (m_nextOrder == std::numeric_limits<std::uint32_t>::max()) {
            m_nextOrder = 0;
            for (Item* const existing : m_items) {
                existing->m_order = m_nextOrder++;
            }
        }
        item->m_order = m_nextOrder;
        m_items.push_back(item.get());
        ++m_nextOrder;
        Item* const appended = item.release();
        AddToIndex(appended);
        return appended;
    }

    // The one behind an item of the list; null behind the last.
    Item* After(Item const* item) const noexcept
    {
        auto const next = m_items.begin() + Position(item) + 1;
        return next != m_items.end() ? *next : nullptr;
    }

    // Takes one of the items out of the list.
    std::unique_ptr<Item> Take(Item* item) noexcept
    {
        RemoveFromIndex(item);
        m_items.erase(m_items.begin() + Position(item));
        return std::unique_ptr<Item>(item);
    }

    // Takes all items out of the list.
    std::vector<Item*> TakeAll() noexcept
    {
        m_index.reset();
        return std::exchange(m_items, {});
    }

    void Rename(Item* item, string&& name) noexcept
    {
        if (item->m_name != name) {
            RemoveFromIndex(item);
            item->m_name = std::move(name);
            AddToIndex(item);
        }
    }

private:
    // Up to this many names are compared one by one.
    static constexpr std::size_t indexedSize = 12;

    std::ptrdiff_t Position(Item const* item) const noexcept
    {
        // Where nothing has been taken out, the orders have no gaps.
        std::size_t const atMost = item->m_order - m_items.front()->m_order;
        if (atMost < m_items.size() && m_items[atMost] == item) {
            return static_cast<std::ptrdiff_t>(atMost);
        }
        return std::lower_bound(
                   m_items.begin(), m_items.end(), item->m_order,
                   [](Item const* element, std::uint32_t order) { return element->m_order < order; }) -
               m_items.begin();
    }

    void MakeIndex() const
    {
        auto index = std::make_unique<NameIndex<Item>>(m_items.size());
        for (Item* const item : m_items) {
            index->Insert(item);
        }
        m_index = std::move(index);
    }

    // The index as far as it can be kept up. Where memory is short or the locale has changed it is given up,
    // until somebody searches.
    NameIndex<Item>* LiveIndex() noexcept
    {
        if (m_index != nullptr && m_index->IsStale()) {
            m_index.reset();
        }
        return m_index.get();
    }

    void AddToIndex(Item* item) noexcept
    {
        if (NameIndex<Item>* const index = LiveIndex()) {
            try {
                index->Insert(item);
            } catch (...) {
                m_index.reset();
            }
        }
    }

    void RemoveFromIndex(Item* item) noexcept
    {
        if (NameIndex<Item>* const index = LiveIndex()) {
            index->Erase(item);
        }
    }

    std::vector<Item*> m_items;
    std::uint32_t m_nextOrder = 0;
    mutable std::unique_ptr<NameIndex<Item>> m_index;
};

} // namespace Quarn::detail
