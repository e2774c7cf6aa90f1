#include <krender/draw/DrawProcedureList.h>

#include <krender/core/Ref.h>
#include <krender/draw/DrawProcedure.h>
#include <krender/platform/String.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <ranges>
#include <utility>

DrawProcedureList::DrawProcedureList() = default;

DrawProcedureList::~DrawProcedureList() { clear(); }

DrawProcedure* DrawProcedureList::find(const krString::CString& name) const
{
    const auto found = std::ranges::find_if(fProcedures, [&name](const Ref<DrawProcedure>& entry)
                                            { return krString::equal(name, entry->name()); });
    return found != fProcedures.end() ? found->get() : nullptr;
}

DrawProcedure* DrawProcedureList::find(const char* name) const
{
    return name ? find(krString::CString(name)) : nullptr;
}

unsigned DrawProcedureList::findAll(const krString::CString& name, DrawProcedureList& out) const
{
    unsigned found = 0;
    const std::size_t size = fProcedures.size(); // at first: `out` may be this list
    for (std::size_t i = 0; i < size; ++i)
        if (krString::equal(name, fProcedures[i]->name()) && out.add(fProcedures[i].get(), false))
            ++found;
    return found;
}

DrawProcedure* DrawProcedureList::item(unsigned index) const
{
    return index < fProcedures.size() ? fProcedures[index].get() : nullptr;
}

bool DrawProcedureList::add(DrawProcedure* procedure, bool uniqueName)
{
    return insertAt(procedure, static_cast<unsigned>(fProcedures.size()), uniqueName);
}

bool DrawProcedureList::insertAt(DrawProcedure* procedure, unsigned position, bool uniqueName)
{
    if (!accepts(procedure, uniqueName))
        return false;
    const auto index = std::min<std::size_t>(position, fProcedures.size());
    fProcedures.insert(fProcedures.begin() + static_cast<std::ptrdiff_t>(index), Ref(procedure));
    return true;
}

bool DrawProcedureList::remove(DrawProcedure* procedure)
{
    // The entries leave the list before they unref the procedure: what its end calls may use the list.
    const auto leaving =
        std::stable_partition(fProcedures.begin(), fProcedures.end(),
                              [procedure](const Ref<DrawProcedure>& entry) { return entry.get() != procedure; });
    const std::vector<Ref<DrawProcedure>> removed(std::make_move_iterator(leaving),
                                                  std::make_move_iterator(fProcedures.end()));
    fProcedures.erase(leaving, fProcedures.end());
    return !removed.empty();
}

void DrawProcedureList::clear()
{
    const auto removed = std::exchange(fProcedures, {}); // as in remove()
}

bool DrawProcedureList::accepts(const DrawProcedure* procedure, bool uniqueName) const
{
    return procedure && !(uniqueName && find(procedure->name()));
}
